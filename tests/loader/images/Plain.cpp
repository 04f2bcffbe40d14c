// Everything that a bundle without messages and exceptions does.
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

const char *const greetings[] = {"hello", "bonjour", "guten Tag"};
int zeroes[5000];
int constructed = 0;
int *farewell = nullptr;
int order = 0;
bool hasEnvironment = false;
int argumentCount = -1;

struct Constructed {
    Constructed() { constructed = ++order; }
} object;

__attribute__((constructor)) void initialise(int count, char **arguments, char **environment) {
    hasEnvironment = environment != nullptr && arguments != nullptr && arguments[count] == nullptr;
    argumentCount = count;
}

__attribute__((destructor)) void leave() {
    if (farewell != nullptr)
        *farewell += 1;
}

__attribute__((noinline, used)) int hiddenFunction(int value) {
    return value * 3;
}

} // namespace

extern "C" {

extern int absentFunction() __attribute__((weak_import));
extern char absentData[] __attribute__((weak_import));
extern pid_t getpid() __attribute__((weak_import));
extern int hostNumber(int);
extern int fromWeakLibrary();

int exportedData = 17;
int *exportedPointer = &exportedData;
char *volatile absentWithAddend = absentData + 16;
pid_t (*volatile processIdentifier)() = getpid;
void *(*volatile allocate)(std::size_t) = std::malloc;

// The program that loads the image exports a function of that name, too.
__attribute__((weak, noinline)) int chosen() {
    return 7;
}
int (*volatile chosenPointer)() = chosen;
int (*volatile weakLibraryFunction)() = fromWeakLibrary;

int add(int left, int right) {
    return left + right;
}

const char *greeting(int index) {
    return greetings[index];
}

int sumOfZeroes() {
    int sum = 0;
    for (int &each : zeroes)
        sum += each++;
    return sum;
}

int constructorsRun() {
    return constructed;
}

bool initialiserHadEnvironment() {
    return hasEnvironment && argumentCount == 0;
}

void onExit(int *counter) {
    farewell = counter;
}

int callHidden(int value) {
    return hiddenFunction(value);
}

int (*hidden())(int) {
    return hiddenFunction;
}

bool absentFunctionIsNull() {
    return &absentFunction == nullptr;
}

char *absentDataPointer() {
    return absentWithAddend;
}

int identify() {
    return processIdentifier == nullptr ? -1 : processIdentifier();
}

bool weakLibraryFunctionIsNull() {
    return weakLibraryFunction == nullptr;
}

int callChosen() {
    return chosenPointer();
}

int *errorAddress() {
    return &errno;
}

int callHost(int value) {
    return hostNumber(value);
}

// Has a guarded buffer on its stack.
unsigned long guardedLength(const char *text) {
    char buffer[64];
    std::strncpy(buffer, text, sizeof buffer - 1);
    buffer[sizeof buffer - 1] = '\0';
    char *volatile copy = buffer;
    return std::strlen(copy);
}
}

int *newInteger(int value) {
    return new int(value);
}
