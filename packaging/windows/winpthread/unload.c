
/* Appended to src/thread.c.

   A DLL that holds this library left behind, each time it was unloaded, four handles, memory, and
   one of the 1088 indices that a process has for thread-local storage; with none left, the program
   was ended. All of it is given back here, and the memory that the C++ library keeps for exceptions
   with it, as the last thing that runs in the DLL. */
extern IMAGE_DOS_HEADER __ImageBase;
extern void _ZN9__gnu_cxx9__freeresEv(void) __attribute__((weak));

/* The system takes all back itself, while locks may be held by threads that are no more. */
static int process_ends(void) {
    typedef BOOLEAN(WINAPI * Function)(void);
    const Function shutdown_in_progress =
        (Function)(void*)GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlDllShutdownInProgress");
    return (HMODULE)&__ImageBase == GetModuleHandleA(NULL) || shutdown_in_progress == NULL ||
           shutdown_in_progress();
}

static void give_back_on_unload(void) {
    const pthread_rwlock_t new_key_lock = PTHREAD_RWLOCK_INITIALIZER;
    const pthread_mutex_t new_list_lock = PTHREAD_RECURSIVE_MUTEX_INITIALIZER;
    const pthread_once_t new_once = PTHREAD_ONCE_INIT;

    if (process_ends()) return;
    if (_ZN9__gnu_cxx9__freeresEv) _ZN9__gnu_cxx9__freeresEv();
    /* The threads left are the program's own, which have called into the DLL. */
    while (idListCnt > 0) {
        _pthread_v* const thread = idList[0].ptr;
        _pthread_cleanup_dest(thread->x);
        if (thread->h != NULL) CloseHandle(thread->h);
        if (thread->evStart != NULL) CloseHandle(thread->evStart);
        pthread_mutex_destroy(&thread->p_clock);
        push_pthread_mem(thread);
    }
    free_pthread_mem();
    if (_pthread_tls != 0xffffffff) TlsFree(_pthread_tls);
    free(_pthread_key_dest);
    pthread_rwlock_destroy(&_pthread_key_lock);
    pthread_mutex_destroy(&mtx_pthr_locked);

    /* Windows and Wine differ in whether they call the DLL once more: it finds all as at first. */
    _pthread_tls = 0xffffffff;
    _pthread_tls_once = new_once;
    _pthread_key_dest = NULL;
    _pthread_key_max = 0;
    _pthread_key_sch = 0;
    _pthread_key_lock = new_key_lock;
    mtx_pthr_locked = new_list_lock;
}

/* Registered before any static object is made, and so called when all are gone. */
static void __attribute__((constructor(101))) register_unload(void) {
    atexit(give_back_on_unload);
}
