import signal

# A process that a shell has started in the background is born with SIGINT ignored, and Python leaves that
# as it is: neither the tests nor what they start would end with Ctrl-C.
signal.signal(signal.SIGINT, signal.default_int_handler)
