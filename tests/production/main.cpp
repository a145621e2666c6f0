// The test card's executable: the engine's start-up with the test card production.
#include "TestCard.h"

int main(int argc, char** argv) {
    return DemoMain::run(argc, argv, testcard::production());
}
