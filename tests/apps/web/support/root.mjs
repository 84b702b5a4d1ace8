import { fileURLToPath } from "node:url";

/** The checkout. */
export const root = fileURLToPath(new URL("../../../../", import.meta.url));
