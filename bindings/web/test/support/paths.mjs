import { fileURLToPath } from "node:url";

export const root = fileURLToPath(new URL("../../../../", import.meta.url));
export const built = `${root}build/web`;
export const packageFolder = `${built}/package`;
export const programs = `${root}build/release/bin`;
