// Pillow's blur beside ours: three box blurs that approximate the Gaussian, at a cost that hardly
// depends on the radius. Its Python runs in this process.

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <cstdlib>
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

// Blurs one picture, read once beforehand.
Work blur(Size size, float sigma) {
    static PyObject* image = evaluated(PyImport_ImportModule("PIL.Image"));
    static PyObject* filters = evaluated(PyImport_ImportModule("PIL.ImageFilter"));
    const android::BitmapStruct bitmap = picture(size);
    PyObject* bytes = evaluated(PyBytes_FromStringAndSize(
        reinterpret_cast<const char*>(bitmap.pixels), Py_ssize_t{4} * size.width * size.height));
    PyObject* from = evaluated(
        PyObject_CallMethod(image, "frombytes", "s(ii)O", "RGBA", size.width, size.height, bytes));
    Py_DECREF(bytes);
    PyObject* filter =
        evaluated(PyObject_CallMethod(filters, "GaussianBlur", "d", static_cast<double>(sigma)));
    // Copies of the work share one pair of references.
    const std::shared_ptr<PyObject> image1(from, [](PyObject* p) { Py_DECREF(p); });
    const std::shared_ptr<PyObject> filter1(filter, [](PyObject* p) { Py_DECREF(p); });
    return [=] {
        Py_DECREF(evaluated(PyObject_CallMethod(image1.get(), "filter", "O", filter1.get())));
    };
}

const Suite suite([] {
    Py_InitializeEx(0);
    for (const Size size : sizes()) {
        for (const float sigma : sigmas(size)) {
            addPeer("blur", "Pillow", size, sigmaName(sigma),
                    [=](Size part) { return blur(part, sigma); });
        }
    }
    const Size size = sizes().back();
    for (const float sigma : {1.f, 25.f, 1000.f}) {
        const Work work = blur(size, sigma);
        addMemory("Pillow", size, sigmaName(sigma), work);
    }
});

}  // namespace
