import type {
    LoadOptions, Picture, Setting, Settings, TableOptions,
} from "./keladjust.js";

export { OutOfMemoryError } from "./keladjust.js";

export interface RequestOptions {
    /**
     * Of the requests of one slot that wait only the latest is kept: the others are rejected with a
     * SupersededError. Any value; without one, every request runs.
     */
    slot?: unknown;
    /** Aborting rejects at once, with the signal's reason, and ends the work. */
    signal?: AbortSignal;
}

export interface AdjustRequestOptions extends RequestOptions {
    /** Gets the share that is done. */
    progress?: (share: number) => void;
    /**
     * Hands the picture's buffer over instead of a copy of it, which leaves the picture empty once
     * the work begins, whatever becomes of it.
     */
    transfer?: boolean;
}

/** The library in a worker of its own. */
export interface WorkerClient {
    readonly version: string;
    readonly settings: readonly Setting[];

    /** A picture of the same kind with the adjusted pixels; the one that was given stays as it is. */
    adjust<P extends Picture>(picture: P, settings: Settings, options?: AdjustRequestOptions): Promise<P>;
    lut(settings: Settings, dimension?: number, options?: TableOptions & RequestOptions): Promise<Float32Array>;
    cube(settings: Settings, dimension?: number, options?: TableOptions & RequestOptions): Promise<string>;

    /** Ends the worker. What it has not done is rejected with an AbortError. */
    close(): void;
}

export interface WorkerClientOptions extends LoadOptions {
    /**
     * In pages: starts the worker, if a bundler or a policy wants it started in another way than
     * `new Worker(url, { type: "module" })`. Its script is "keladjust/worker-thread".
     */
    worker?: () => Worker;
}

/** Starts a worker and loads the library there. */
export function createWorkerClient(options?: WorkerClientOptions): Promise<WorkerClient>;

/** A later request of the same slot has taken the place of this one, which was not begun. */
export class SupersededError extends Error {}
