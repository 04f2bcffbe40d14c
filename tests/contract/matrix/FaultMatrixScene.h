#pragma once

#include "FaultMatrix.h"
#include "LoadedPlugin.h"
#import "ProcessInfoDouble.h"
#import "SharedObjectSubstitute.h"
#import "TracedObject.h"

#import <Foundation/Foundation.h>

#include <map>
#include <memory>

namespace matrix {

/// What an operation of the matrix is arranged in: a host, an instance around an object of the
/// test's, and the family's registry. No host service is bound yet.
struct Scene : LoadedPlugin {
    using Services = std::vector<std::string_view>;

    /// Without an instance the plug-in has not run at all.
    explicit Scene(std::optional<double> version, bool withInstance = true);
    ~Scene();

    OwnObject<ProcessInfoDouble> object; ///< behind the instance
    Traced own{"own"};                   ///< the same, for the operations that change something
    Traced shared{"shared"};             ///< the process's shared object, with substituteShared
    Traced token{"token"};               ///< of every activity
    host::ObjectRef info;

    /// Puts the object whose messages are lines of the trace behind the instance.
    void useOwn() { setHandle(host, info, own); }
    void substituteShared();
    /// Every message to the object behind the instance raises "Trouble".
    void refuse();

    /// A begun activity with the reason "why", made without the plug-in.
    host::ObjectRef begunActivity();
    std::string stateOf(host::ObjectHandle activity) const;

    /// The result of a call of the host language, as text; keeps it, and what the call raised.
    std::string seen(const host::Outcome &outcome);
    /// The same of a handle that a function of the image gave, which comes with a reference.
    std::string taken(host::ObjectHandle result, id wrapped = nil);
    std::string taken(host::StringHandle result);

    [[nodiscard]] std::string describe(const host::Value &value, id wrapped = nil) const;
    std::string describe(host::ObjectHandle object, id wrapped = nil) const;
    std::string describe(host::StringHandle string) const;
    std::string describeOther(host::ObjectHandle object, id wrapped) const;

    /// Runs the act with these services in that state, in this process, and tells what is to be
    /// seen.
    Aftermath run(const Act &act, const Services &services, Fault fault, bool once = false);
    /// The same, and then tells of a run with all services as they should be.
    Aftermath runAgain(const Act &act, const Services &services, Fault fault, bool once = false);

private:
    /// What there is of activities, by their names in the trace.
    [[nodiscard]] std::map<std::string, std::string> liveActivities() const;
    std::string runWith(const Services &services, Fault fault, bool once,
                        const std::function<void()> &body);
    std::unique_ptr<SharedObjectSubstitute> substitute_;
    std::vector<host::ObjectRef> results_;
    std::vector<host::StringRef> strings_;
    std::vector<host::RaisedException> raised_;
};

/// An operation on the instance through the host language.
Act reading(Scene &scene, const char *property);
Act calling(Scene &scene, const char *method, host::Values arguments = {});

/// The conversion of an object (borrowed).
Act converting(Scene &scene, id object);
/// The same act; first the host object comes to that place, with a reference for the plug-in.
Act handingOver(Act act, host::ObjectRef object, void **place);

} // namespace matrix
