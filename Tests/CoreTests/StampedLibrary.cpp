// A stand-in for a library of the program, loaded by `LoadedLibraryTests`.

extern "C" {

const char* testStamp();
const char* testStamp() {
    return "1.0.0 of the test";
}

int testAnswer();
int testAnswer() {
    return 42;
}
}
