import type { NamedSettings, Setting } from "./settings.js";

export type { NamedSettings, Setting } from "./settings.js";

/** red-hue, of redHue. */
type Kebab<Name extends string> = Name extends `${infer First}${infer Rest}`
    ? `${First extends Lowercase<First> ? First : `-${Lowercase<First>}`}${Kebab<Rest>}`
    : Name;

/**
 * Values for some of the settings, by name: `redHue`, or `red-hue` as presets and the command line
 * spell it. What is not given has its usual value, with which pictures stay as they are.
 */
export type Settings = NamedSettings & {
    [Name in keyof NamedSettings & string as Kebab<Name>]?: number;
};

/** The order of a pixel's bytes. */
export type PixelOrder = "rgba" | "bgra" | "rgb" | "bgr" | "gray";

/** A picture, first row first, without padding. An ImageData is one. */
export interface Picture {
    readonly data: Uint8ClampedArray | Uint8Array;
    readonly width: number;
    readonly height: number;
    /** "rgba" unless given. */
    readonly order?: PixelOrder;
}

/** Gets the share that is done, from 0 to 1. */
export type Progress = (share: number) => boolean | void;

export interface AdjustOptions {
    /**
     * Called every few milliseconds. The result false cancels, and so does an exception; the picture
     * is then as it was.
     */
    progress?: Progress;
    /** Looked at whenever progress is made. */
    signal?: AbortSignal;
}

export interface TableOptions {
    /** Which channel varies fastest from colour to colour: "red-fastest" unless given. */
    order?: "red-fastest" | "blue-fastest";
}

export interface Keladjust {
    /** The library's version. */
    readonly version: string;
    /** Every setting, in the record's order. */
    readonly settings: readonly Setting[];
    /** Bytes that the library's memory has by now. */
    readonly memory: number;

    /**
     * Adjusts a picture in place and returns it.
     *
     * @throws OutOfMemoryError if memory is short, the signal's reason or an AbortError if it was
     *         cancelled; the picture is then as it was
     */
    adjust<P extends Picture>(picture: P, settings: Settings, options?: AdjustOptions): P;

    /**
     * The settings as a colour table: dimension^3 triples red, green, blue in 0..1. Clarity,
     * sharpening, the vignette and all after it have no part in it.
     *
     * @param dimension 2..256 colours along each axis, 32 unless given
     */
    lut(settings: Settings, dimension?: number, options?: TableOptions): Float32Array;

    /** The same as the text of a cube file. */
    cube(settings: Settings, dimension?: number, options?: TableOptions): string;

    /**
     * The settings in the text of a preset of the command line: one JSON object.
     *
     * @param name stands at the head of messages
     */
    readPreset(text: string, name?: string): NamedSettings;

    /** The text of a preset with the settings that are given. */
    writePreset(settings: Settings): string;
}

/** Where the WebAssembly module is to come from. */
export type WasmSource = string | URL | Response | PromiseLike<Response> | ArrayBuffer | ArrayBufferView
    | WebAssembly.Module;

export interface LoadOptions {
    /** keladjust.wasm beside the package's JavaScript, unless given. */
    wasm?: WasmSource;
    /** Bytes that the library may have in all, 4 MiB to 2 GiB; 2 GiB unless given. */
    maximumMemory?: number;
}

/** Loads the library. */
export function load(options?: LoadOptions): Promise<Keladjust>;

/** Memory is short. What was to be changed is as it was. */
export class OutOfMemoryError extends RangeError {}
