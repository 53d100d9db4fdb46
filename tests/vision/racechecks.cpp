// For tests that are built with the checks for data races.

#ifdef __SANITIZE_THREAD__

// Called by the checks at their start. Qt was built without them, so that its locks are not seen:
// what QtConcurrent does with its own objects looks like races.
extern "C" __attribute__((visibility("default"))) const char*
__tsan_default_suppressions() {  // NOLINT
    return "race:QtConcurrent::\n"
           "race:QtPrivate::Result\n"
           "race:QFutureInterface\n"
           "race:libQt5Core.so.5\n"
           "race:libQt5Concurrent.so.5\n";
}

#endif
