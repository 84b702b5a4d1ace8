import { adjustBoth } from "./app.js";

window.results = adjustBoth({});
