// What a module needs, and does not find where it is tested.

#if defined(_WIN32)
__declspec(dllexport)
#endif
    int neededByAnEngine() {
    return 1;
}
