// Making and finding elements.

/**
 * @template {keyof HTMLElementTagNameMap} Tag
 * @param {Tag} tag
 * @param {Record<string, string | number | boolean>} [attributes] true: there, false: not there
 * @param {...(Node | string)} children
 * @returns {HTMLElementTagNameMap[Tag]}
 */
export function make(tag, attributes = {}, ...children) {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
        if (value !== false) element.setAttribute(name, value === true ? "" : String(value));
    }
    element.append(...children);
    return element;
}

/**
 * An element of index.html.
 * @template {HTMLElement} T
 * @param {string} id
 * @param {new () => T} kind
 * @returns {T}
 */
export function find(id, kind) {
    const element = document.getElementById(id);
    if (!(element instanceof kind)) throw new Error(`index.html has no such element: ${id}`);
    return element;
}
