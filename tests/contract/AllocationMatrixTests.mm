// The allocation matrix: in every operation, each allocation that the plug-in asks for itself fails
// in turn. It makes few: none but for long text.

#include "AllocationSpy.h"
#import "FaultMatrixScene.h"

#include <gmock/gmock.h>

#include <iostream>
#include <map>
#include <ostream>

namespace {

using namespace matrix;

/// The sizes asked for, in bytes, and what is to be seen when one of them is refused.
struct Memory {
    std::vector<std::size_t> sizes;
    Aftermath refused;
};

// Text of 100 units or more is written to a block of six bytes a unit, and 800 bytes or more of
// UTF-32 are rewritten as UTF-16 in a block of its largest size.
const std::map<std::string, Memory> &memoryOfOperations() {
    static const std::map<std::string, Memory> memory = {
        {"hostName, long", {{720}, gives("nil")}},
        {"string, long", {{720}, gives("String(nil)")}},
        {"UTF-32 text, long, old host", {{802}, gives("nil")}},
    };
    return memory;
}

Operations everyOperation() {
    Operations all;
    for (const Operations *operations :
         {&propertyOperations(), &methodOperations(), &lifeOperations(), &valueOperations(),
          &memoryOperations(), &collectionOperations(), &wrapperOperations(), &textOperations()})
        all.insert(all.end(), operations->begin(), operations->end());
    return all;
}

class AllocationMatrix : public testing::TestWithParam<Operation> {
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

    const Operation &operation = GetParam();
    Scene scene{operation.hostVersion, operation.withInstance};
    Act act = operation.arrange(scene);
};

} // namespace

TEST_P(AllocationMatrix, ShowsOfEveryAllocationWhatBecomesOfItsFailure) {
    scene.host.clearTrace();
    const auto found = memoryOfOperations().find(operation.name);
    const Memory memory = found == memoryOfOperations().end() ? Memory{} : found->second;
    const std::string asked = testing::PrintToString(memory.sizes) + ", 0 unfreed";
    EXPECT_EQ(seenWith(0), operation.present.text() + asked) << operation.name;
    for (std::size_t n = 1; n <= memory.sizes.size(); ++n)
        EXPECT_EQ(seenWith(n), memory.refused.text() + asked) << operation.name << ", " << n;
    const auto cells = static_cast<int>(1 + memory.sizes.size());
    RecordProperty("cells", cells);
    std::cout << cells << " cells\n";
}

INSTANTIATE_TEST_SUITE_P(Of, AllocationMatrix, testing::ValuesIn(everyOperation()),
                         [](const auto &tested) { return testNameOf(tested.param); });
