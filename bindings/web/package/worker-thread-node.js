// The worker of a client in Node.

import { parentPort } from "node:worker_threads";

import { serve } from "./lib/service.js";

const answer = serve((message, transfer) => parentPort.postMessage(message, transfer));
parentPort.on("message", answer);
