/** What the library says of one of its settings. */
export interface Setting {
    /** As presets and the command line spell it: "red-hue". */
    readonly name: string;
    /** As JavaScript spells it: "redHue". */
    readonly key: string;
    /** "Red hue" */
    readonly label: string;
    /** Heading over neighbours. */
    readonly group: string;
    /** One line, without a full stop. */
    readonly help: string;
    /** Its place in the record. */
    readonly slot: number;
    /** Whether values are whole numbers. */
    readonly isInteger: boolean;
    /** The value that leaves pictures alone. */
    readonly identity: number;
    /** The useful range; any value works. */
    readonly lowest: number;
    readonly highest: number;
    /** What a slider starts from. */
    readonly usual: number;
}
