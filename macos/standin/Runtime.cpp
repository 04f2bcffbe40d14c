// What macOS's Objective-C runtime exports and GCC's has as inline functions only. Without GCC's
// header, whose definition would be in the way.

struct objc_class;

struct objc_object {
    objc_class *isa;
};

extern "C" objc_class *object_getClass(objc_object *object);

objc_class *object_getClass(objc_object *object) {
    return object != nullptr ? object->isa : nullptr;
}
