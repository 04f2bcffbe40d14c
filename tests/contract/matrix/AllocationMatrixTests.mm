// The allocation matrix: in every operation, each allocation that the plug-in asks for itself fails
// in turn. It makes few: none but for long text.

#include "AllocationSpy.h"
#import "FaultMatrixScene.h"

#include <gmock/gmock.h>

#include <iostream>

namespace {

using namespace matrix;

class AllocationMatrix : public testing::TestWithParam<const Operation *> {
protected:
    std::string seenWith(std::size_t failing) {
        return inChild([&] {
            std::vector<std::size_t> sizes;
            std::size_t unfreed = 0;
            const Act spied{.run =
                                [&] {
                                    AllocationSpy spy(scene.image);
                                    spy.fail(failing);
                                    std::string value = act.run();
                                    sizes = spy.sizes();
                                    unfreed = spy.unfreed();
                                    return value;
                                },
                            .state = act.state};
            const Aftermath after = scene.run(spied, {}, Fault::none);
            return after.text() + testing::PrintToString(sizes) + ", " + std::to_string(unfreed) +
                   " unfreed";
        });
    }

    const Operation &operation = *GetParam();
    Scene scene{operation.hostVersion, operation.withInstance};
    Act act = operation.arrange(scene);
};

} // namespace

TEST_P(AllocationMatrix, ShowsOfEveryAllocationWhatBecomesOfItsFailure) {
    scene.host.clearTrace();
    const std::string asked = testing::PrintToString(operation.allocations) + ", 0 unfreed";
    EXPECT_EQ(seenWith(0), operation.present.text() + asked) << operation.name;
    for (std::size_t n = 1; n <= operation.allocations.size(); ++n)
        EXPECT_EQ(seenWith(n), operation.unallocated.text() + asked) << operation.name << ", " << n;
    const auto cells = static_cast<int>(1 + operation.allocations.size());
    RecordProperty("cells", cells);
    std::cout << cells << " cells\n";
}

INSTANTIATE_TEST_SUITE_P(Of, AllocationMatrix, testing::ValuesIn(each(everyOperation())),
                         testNameOf);
