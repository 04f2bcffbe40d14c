// Every operation with every host service in every state.

#include "CoreFoundationCalls.h"
#import "FaultMatrixScene.h"

#include "host/core/PluginRecords.h"
#include "host/services/Services.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iostream>
#include <span>

namespace {

using namespace matrix;
using testing::AnyOfArray;

/// The services in the order in which they were first looked for.
Lines servicesLookedFor(const host::Host &host) {
    Lines names;
    for (const std::string &line : host.lookups())
        if (const std::string name = line.substr(line.find(' ') + 1);
            std::ranges::find(names, name) == names.end())
            names.push_back(name);
    return names;
}

Lines servicesOf(const Rows &rows) {
    Lines names;
    for (const Row &row : rows)
        names.push_back(row.service);
    return names;
}

std::string listed(const Lines &lines) {
    std::string text;
    for (const std::string &line : lines)
        text += "  uses " + line + '\n';
    return text;
}

const Row *rowOf(const Operation &operation, std::string_view service) {
    const auto found = std::ranges::find(operation.rows, service, &Row::service);
    return found == operation.rows.end() ? nullptr : &*found;
}

Aftermath expected(const Row &row, Fault fault) {
    return fault == Fault::missing || fault == Fault::null ? row.silent : row.thrown(fault);
}

void printCells(int cells) {
    std::cout << cells << " cells\n";
}

class FaultMatrix : public testing::TestWithParam<const Operation *> {
protected:
    std::string seenWith(const Scene::Services &services, Fault fault, bool once = false) {
        return inChild([&] { return scene.run(act, services, fault, once).text(); });
    }
    [[nodiscard]] std::string cell(std::string_view service, Fault fault) const {
        return operation.name + " with " + std::string(service) + ' ' + std::string(nameOf(fault));
    }
    /// Nothing changes, whatever is the matter with the services that the operation does not use.
    /// They fail together; only if something shows, one after the other, to tell which.
    void expectUnchanged(const Scene::Services &unused, Fault fault) {
        const std::string normal = operation.present.text();
        if (seenWith(unused, fault) == normal)
            return;
        ADD_FAILURE() << cell("all unused services", fault);
        for (const std::string_view service : unused)
            EXPECT_EQ(seenWith({service}, fault), normal) << cell(service, fault);
    }

    const Operation &operation = *GetParam();
    Scene scene{operation.hostVersion, operation.withInstance};
    Act act = operation.arrange(scene);
};

} // namespace

TEST_P(FaultMatrix, ShowsOfEveryFaultWhatTheTableSays) {
    scene.host.clearTrace();
    const std::string normal = inChild([&] {
        const Aftermath after = scene.run(act, {}, Fault::none);
        return after.text() + listed(servicesLookedFor(scene.host));
    });
    EXPECT_EQ(normal, operation.present.text() + listed(servicesOf(operation.rows)))
        << operation.name << " with all services present";

    int cells = 1;
    Scene::Services unused;
    for (const std::string_view service : host::Services::names()) {
        cells += static_cast<int>(faults().size());
        const Row *row = rowOf(operation, service);
        if (row == nullptr) {
            unused.push_back(service);
            continue;
        }
        for (const Fault fault : faults())
            EXPECT_EQ(seenWith({service}, fault, row->once), expected(*row, fault).text())
                << cell(service, fault);
    }
    for (const Fault fault : faults())
        expectUnchanged(unused, fault);
    printCells(cells);
}

// A run after a fault shows what it shows after a run without one; or, where that first run had
// done something for good, what a first run shows.
TEST_P(FaultMatrix, HarmsNoLaterRun) {
    const auto afterwards = [&](const Scene::Services &services, Fault fault, bool once) {
        return inChild([&] { return scene.runAgain(act, services, fault, once).text(); });
    };
    const std::string first = operation.present.ofOneRun().text();
    const std::string second = afterwards({}, Fault::none, false);
    int cells = 1;
    for (const Row &row : operation.rows)
        for (const Fault fault : faults()) {
            ++cells;
            const bool silent = fault == Fault::missing || fault == Fault::null;
            const Lines expected = row.remembered && silent ? Lines{row.silent.ofOneRun().text()}
                                                            : Lines{second, first};
            EXPECT_THAT(afterwards({row.service}, fault, row.once), AnyOfArray(expected))
                << "after " << cell(row.service, fault);
        }
    printCells(cells);
}

// A reference that cannot be given back is trouble, whichever it is: it shows as an exception that
// leaves the operation, or in the host.
TEST_P(FaultMatrix, DropsNoFailureToRelease) {
    constexpr std::string_view ofCoreFoundation = "CFRelease";
    const auto outcome = [&](std::string_view release, int failing) -> std::string {
        // These live longer than the operation: the host still releases when it shuts down.
        int calls = 0;
        bool failed = false;
        bool over = false;
        const auto fail = [&] {
            if (++calls != failing || over)
                return;
            failed = true;
            throwOf(Fault::outOfRange);
        };
        if (release != ofCoreFoundation)
            scene.host.services().fail(release, fail);
        const Act failingOnce{[&] {
            const CoreFoundationCalls calls(scene.image, [&](std::string_view function) {
                if (function == release)
                    fail();
                return true;
            });
            std::string value = act.run();
            over = true;
            return value;
        }};
        const Aftermath after = scene.run(failingOnce, {}, Fault::none);
        if (!failed)
            return "not called";
        const bool shows = after.left == exceptionOf(Fault::outOfRange) ||
                           std::ranges::count(after.raised, "OutOfBoundsException: out of range");
        return shows ? "shows" : after.text();
    };
    int cells = 0;
    for (const std::string_view release : {std::string_view("REALUnlockObject"),
                                           std::string_view("REALUnlockString"), ofCoreFoundation})
        for (int failing = 1;; ++failing) {
            const std::string seen = inChild([&] { return outcome(release, failing); });
            if (seen == "not called")
                break;
            ++cells;
            EXPECT_EQ(seen, "shows") << operation.name << ", call " << failing << " of " << release;
        }
    printCells(cells);
}

INSTANTIATE_TEST_SUITE_P(OfProperty, FaultMatrix, testing::ValuesIn(each(propertyOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfMethod, FaultMatrix, testing::ValuesIn(each(methodOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfLife, FaultMatrix, testing::ValuesIn(each(lifeOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfValue, FaultMatrix, testing::ValuesIn(each(valueOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfMemory, FaultMatrix, testing::ValuesIn(each(memoryOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfCollection, FaultMatrix, testing::ValuesIn(each(collectionOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfWrapper, FaultMatrix, testing::ValuesIn(each(wrapperOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfText, FaultMatrix, testing::ValuesIn(each(textOperations())),
                         testNameOf);

namespace {

/// The operation of that name, or one whose name goes on behind a comma or a blank.
bool isInMatrices(const std::string &name) {
    return std::ranges::any_of(everyOperation(), [&](const Operation &operation) {
        const std::string_view known = operation.name;
        return known.starts_with(name) && (known.size() == name.size() ||
                                           known[name.size()] == ',' || known[name.size()] == ' ');
    });
}

/// The functions that a class names to the host, as operations are named.
Lines functionsOf(const host::PluginClassRecord &record, const std::string &prefix) {
    Lines names;
    if (record.constructor != nullptr)
        names.push_back(prefix + "class constructor");
    if (record.destructor != nullptr)
        names.push_back(prefix + "class destructor");
    for (const auto &property : std::span(record.properties, record.propertyCount)) {
        if (!host::accessorIsField(property.getter))
            names.push_back(prefix + property.name);
        if (property.setter != nullptr && !host::accessorIsField(property.setter))
            names.push_back(prefix + "set " + property.name);
    }
    for (const auto methods : {std::span(record.methods, record.methodCount),
                               std::span(record.sharedMethods, record.sharedMethodCount)})
        for (const auto &method : methods) {
            const std::string declaration = method.declaration;
            names.push_back(prefix + declaration.substr(0, declaration.find_first_of("( ")));
        }
    return names;
}

} // namespace

TEST(Matrices, HaveAnOperationForEveryFunctionThatTheClassesNameToTheHost) {
    const LoadedPlugin loaded;
    const auto &records = loaded.host.registeredRecords();
    ASSERT_EQ(records.size(), 2u);
    const Lines ofInfo = functionsOf(*records[0], "");
    const Lines ofActivity = functionsOf(*records[1], "activity ");
    EXPECT_EQ(ofInfo.size() + ofActivity.size(), 33u) << "so that none is overlooked here";
    for (const Lines &names : {ofInfo, ofActivity})
        for (const std::string &name : names)
            EXPECT_TRUE(isInMatrices(name)) << name;
}
