// What pages and the native library are given alike.

import { records } from "./records.mjs";

export const width = 517;
export const height = 389;
export const tableSize = 33;
export const tableRecord = { ...records["eleven settings"], ...records["three colour ranges"] };
