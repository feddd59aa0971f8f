#include "src/tolkflash.h"

int main(int argc, char* argv[]) {
    return CheckState(argc, argv);
}
