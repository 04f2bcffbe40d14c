extern "C" int next() {
    static thread_local int number = 1;
    return ++number;
}
