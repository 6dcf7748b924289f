// Pillow's blur beside ours: three box blurs that approximate the Gaussian, at a cost that hardly
// depends on the radius. Its Python runs in this process.

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <cstdlib>
#include <functional>
#include <memory>

#include "bench/support.h"

namespace {

PyObject* evaluated(PyObject* value) {
    if (value == nullptr) {
        PyErr_Print();
        std::abort();
    }
    return value;
}

using Object = std::shared_ptr<PyObject>;  // copies share one reference

Object owned(PyObject* value) {
    return {evaluated(value), [](PyObject* p) { Py_DECREF(p); }};
}

// Returns a function that blurs one picture, read once beforehand.
std::function<Object()> blur(Size size, float sigma) {
    static const Object image = owned(PyImport_ImportModule("PIL.Image"));
    static const Object filters = owned(PyImport_ImportModule("PIL.ImageFilter"));
    const android::BitmapStruct bitmap = picture(size);
    const Object bytes = owned(PyBytes_FromStringAndSize(
        reinterpret_cast<const char*>(bitmap.pixels), Py_ssize_t{4} * size.width * size.height));
    const Object from = owned(PyObject_CallMethod(image.get(), "frombytes", "s(ii)O", "RGBA",
                                                  size.width, size.height, bytes.get()));
    const Object filter =
        owned(PyObject_CallMethod(filters.get(), "GaussianBlur", "d", static_cast<double>(sigma)));
    return [=] { return owned(PyObject_CallMethod(from.get(), "filter", "O", filter.get())); };
}

Difference pillowDifference(Size size, float sigma) {
    const Object bytes = owned(PyObject_CallMethod(blur(size, sigma)().get(), "tobytes", nullptr));
    return blurDifference(size, sigma,
                          reinterpret_cast<const uint8_t*>(PyBytes_AsString(bytes.get())), 4);
}

void addBlur(Size size, float sigma) {
    addPeerBlur(
        "Pillow", size, sigma, [=](Size part) -> Work { return blur(part, sigma); },
        [=] { return pillowDifference(size, sigma); });
}

const Suite suite([] {
    if (options().kind == Kind::kAvx2) return;  // has no wider vectors anyway
    Py_InitializeEx(0);
    for (const Size size : sizes()) {
        for (const float sigma : sigmas(size)) addBlur(size, sigma);
        for (const float sigma : furtherSigmas(size)) addBlur(size, sigma);
    }
    if (options().kind != Kind::kMemory) return;
    const Size size = sizes().back();
    for (const float sigma : {1.f, 25.f, 1000.f})
        addMemory("Pillow", size, sigma, blur(size, sigma));
});

}  // namespace
