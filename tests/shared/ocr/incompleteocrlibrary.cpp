// A library with the first function of Leptonica's and no other.

extern "C" __attribute__((visibility("default"))) void* pixCreateNoInit(int, int, int) {
    return nullptr;
}
