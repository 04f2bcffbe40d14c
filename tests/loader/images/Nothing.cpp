extern "C" int nothing() {
    return 0;
}
