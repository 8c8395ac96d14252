// Makes the demonstration library in the folder given on the command line.

#include "DemoLibrary.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "make-demo-library FOLDER\n";
        return 2;
    }
    try {
        torvo::test::makeDemoLibrary(argv[1]);
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return 0;
}
