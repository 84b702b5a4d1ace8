// What a worker answers to the requests of a client.

import { Keladjust } from "./keladjust.js";

/** Gets the messages of a client, the set-up first, and posts the answers. */
export function serve(post) {
    let library = null;

    const calls = {
        adjust({ picture, settings, buffer, number, tells }) {
            const data = new Uint8Array(buffer);
            const progress = tells ? (share) => post({ number, share }) : undefined;
            library.adjust({ ...picture, data }, settings, { progress });
            return [{ buffer }, [buffer]];
        },
        lut({ arguments: given }) {
            const table = library.lut(...given);
            return [{ table }, [table.buffer]];
        },
        cube({ arguments: given }) {
            return [{ table: library.cube(...given) }];
        },
    };

    return async (message) => {
        if (library === null) {
            library = await Keladjust.create(message.module, message.maximumMemory);
            const { settings, version } = library;
            post({ ready: { settings, version } });
            return;
        }
        const { number } = message;
        try {
            const [result, transfer] = calls[message.call](message);
            post({ number, result }, transfer);
        } catch ({ name, message: text }) {
            post({ number, error: { name, message: text } });
        }
    };
}
