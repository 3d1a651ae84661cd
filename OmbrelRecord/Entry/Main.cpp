#include "OmbrelRecord/Entry/Entry.h"

int main(int argc, char** argv) {
    return OmbrelRecord::Entry::main(argc, argv);
}
