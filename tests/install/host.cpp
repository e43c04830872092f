#include <zbBase/zbBase.h>

#include <cstdio>

int main() {
    std::printf("heading %.0f\n", zbBase::CzbDE::getHeading(1.0, -1.0));
    return 0;
}
