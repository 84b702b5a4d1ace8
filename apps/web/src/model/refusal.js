/** Something that is told to the person as it stands. */
export class Refusal extends Error {}
