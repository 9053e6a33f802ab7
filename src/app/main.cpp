// Ombrith Valkesh: a side-scrolling action platformer.
#include "app/app.h"

int main() {
    return RunApp();
}
