import "keladjust/worker-thread";
