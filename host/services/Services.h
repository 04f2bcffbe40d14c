#pragma once

// The host services by name, and the switches that make each of them misbehave.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class ServiceMode {
    present,
    missing,  ///< the resolver answers null; a plug-in that bound the service before keeps it
    null,     ///< does nothing and answers null, zero or false
    failing,  ///< runs the thrower first; works as usual when that returns
    replaced, ///< another function of the same signature runs instead
};

struct ServiceState {
    ServiceMode mode = ServiceMode::present;
    std::function<void()> thrower = {};
    void *replacement = nullptr;
    std::size_t lookups = 0; ///< requests to the resolver
    std::size_t calls = 0;
};

/// All names throw UsageError, with the nearest existing name, when there is no such service.
/// Every switch works at once, for plug-ins that have bound the service too ("missing" apart).
class Services {
public:
    Services();

    void hide(std::string_view name);
    void restore(std::string_view name);
    void answerNull(std::string_view name);
    /// The thrower is what the service throws: [] { throw std::bad_alloc{}; }.
    void fail(std::string_view name, std::function<void()> thrower);
    template <typename Result, typename... Arguments>
    void replace(std::string_view name, Result (*function)(Arguments...)) {
        replaceWith(name, reinterpret_cast<void *>(function));
    }
    void replaceWith(std::string_view name, void *function);

    [[nodiscard]] std::size_t lookups(std::string_view name) const;
    [[nodiscard]] std::size_t calls(std::string_view name) const;

    /// The entry point that the resolver gives out; null for an unknown or missing service.
    /// Counts and traces the request.
    void *find(const char *name);
    /// The same without a trace, whatever the mode (benchmarks, tests of the host itself).
    [[nodiscard]] void *entry(std::string_view name) const;

    /// Every service, in the order of the table.
    static const std::vector<std::string_view> &names();
    static bool has(std::string_view name);
    /// The existing name most like this one.
    static std::string nearest(std::string_view name);

    // For the entry points.
    ServiceState &state(std::size_t index) { return states_[index]; }

private:
    ServiceState &stateOf(std::string_view name);

    std::vector<ServiceState> states_;
};

} // namespace host
