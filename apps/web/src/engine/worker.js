// What both kinds of workers share: requests come in as {id, name, argument}, one is answered after
// the other, and an answer is a result or what went wrong.

import { Refusal } from "../model/refusal.js";

/**
 * A result with the memory that moves along with it.
 * @template T
 * @typedef {{result: T, transfer?: Transferable[]}} Answer
 */

/**
 * @param {Record<string, (argument: any) => Answer<unknown> | Promise<Answer<unknown>>>} requests
 */
export function serve(requests) {
    let before = Promise.resolve();
    addEventListener("message", ({ data: { id, name, argument } }) => {
        before = before.then(async () => {
            try {
                const { result, transfer = [] } = await requests[name](argument);
                postMessage({ id, result }, { transfer });
            } catch (error) {
                const { message } = /** @type {Error} */ (error);
                postMessage({ id, failure: { message, isRefusal: error instanceof Refusal } });
            }
        });
    });
}
