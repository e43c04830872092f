// zbsim: a host program of the zbBase library.
//
// For now it shows the numeric core: bearings between a few points and a missile fly-out.
#include <zbBase/zbBase.h>

#include <cstdio>

int main() {
    zbBase::CzbDE de;
    std::printf("zbsim: bearings and a missile fly-out\n");
    const double points[][2] = {{0.0, 100.0}, {100.0, 0.0}, {100.0, -100.0}, {-50.0, -50.0}};
    for (const auto& p : points) {
        std::printf("  heading of (%7.1f, %7.1f): %7.2f deg\n", p[0], p[1],
                    zbBase::CzbDE::getHeading(p[0], p[1]));
    }
    const double targets[][3] = {{0.0, 100.0, 0.0}, {0.0, -1000.0, 0.0}, {0.0, -100.0, 0.0}};
    const double headingSteps[] = {5.0, 5.0, 1.0};
    const double elevationSteps[] = {5.0, 5.0, 0.0};
    for (int i = 0; i < 3; ++i) {
        const bool hit = de.missilesim(0.0, 0.0, 0.0, 0.0, 0.0, headingSteps[i], elevationSteps[i],
                                       targets[i][0], targets[i][1], targets[i][2], 300.0, 0.0, 30);
        std::printf("  missile toward (%.0f, %.0f, %.0f), steps %.0f/%.0f: %s\n", targets[i][0],
                    targets[i][1], targets[i][2], headingSteps[i], elevationSteps[i],
                    hit ? "captured" : "lost");
    }
    return 0;
}
