// Needs what nobody has.
extern "C" int absentFunction();
extern "C" int anotherAbsentFunction();
extern "C" char absentData[];

extern "C" int needsAbsent() {
    return absentFunction() + anotherAbsentFunction() + absentData[0];
}
