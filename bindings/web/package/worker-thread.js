// The worker of a client in a page: a module worker.

import { serve } from "./lib/service.js";

const answer = serve((message, transfer) => self.postMessage(message, transfer ?? []));
self.addEventListener("message", ({ data }) => answer(data));
