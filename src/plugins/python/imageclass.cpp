#include "plugins/python/imageclass.h"

#include <QBuffer>
#include <QImage>
#include <array>
#include <memory>

#include "interpreter/generic/imageobjects.h"
#include "plugins/python/conversion.h"
#include "plugins/python/nativeclasses.h"

namespace Tamrix::PythonPlugin {

namespace {

const QImage& imageOf(PyObject* self) {
    return staticPointerCast<ImageScriptObject>(NativeHolder::unwrap(self))->image;
}

bool isImage(PyObject* object) {
    return PyObject_TypeCheck(object, imageBase()) != 0;
}

/// Equal pixels, whatever form they are kept in.
PyObject* compare(PyObject* left, PyObject* right, int operation) {
    if (!isImage(left) || !isImage(right) || (operation != Py_EQ && operation != Py_NE))
        Py_RETURN_NOTIMPLEMENTED;
    return PyBool_FromLong(
        long{arePixelsEqual(imageOf(left), imageOf(right)) == (operation == Py_EQ)});
}

PyObject* represent(PyObject* self) {
    const QImage& image = imageOf(self);
    return PyUnicode_FromFormat("<%s %dx%d>", Py_TYPE(self)->tp_name, image.width(),
                                image.height());
}

PyObject* toPng(PyObject* self, PyObject* /*unused*/) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!imageOf(self).save(&buffer, "PNG")) {
        PyErr_SetString(PyExc_ValueError, "The image has no pixels to be written");
        return nullptr;
    }
    return PyBytes_FromStringAndSize(bytes.constData(), bytes.size());
}

/// What a view of an image's pixels needs as long as it is there.
struct PixelView {
    QImage pixels;
    std::array<Py_ssize_t, 3> shape{};
    std::array<Py_ssize_t, 3> strides{};
};

/// Red, green, blue and alpha as bytes, without padding between the rows.
QImage rgbaPixels(const QImage& image) {
    return image.convertToFormat(QImage::Format_RGBA8888);
}

int getBuffer(PyObject* self, Py_buffer* view, int flags) {
    view->obj = nullptr;
    if ((flags & PyBUF_WRITABLE) == PyBUF_WRITABLE) {
        PyErr_SetString(PyExc_BufferError, "An image's pixels are written with setPixel()");
        return -1;
    }
    auto held = std::make_unique<PixelView>();
    held->pixels = rgbaPixels(imageOf(self));
    const Py_ssize_t width = held->pixels.width();
    const Py_ssize_t height = held->pixels.height();
    held->shape = {height, width, 4};
    held->strides = {4 * width, 4, 1};
    view->buf = const_cast<uchar*>(held->pixels.constBits());
    view->len = height * width * 4;
    view->readonly = 1;
    view->itemsize = 1;
    view->format = (flags & PyBUF_FORMAT) != 0 ? const_cast<char*>("B") : nullptr;
    view->ndim = 3;
    view->shape = (flags & PyBUF_ND) != 0 ? held->shape.data() : nullptr;
    view->strides = (flags & PyBUF_STRIDES) == PyBUF_STRIDES ? held->strides.data() : nullptr;
    view->suboffsets = nullptr;
    view->internal = held.release();
    view->obj = Py_NewRef(self);
    return 0;
}

void releaseBuffer(PyObject* /*self*/, Py_buffer* view) {
    delete static_cast<PixelView*>(view->internal);
}

/// Pillow asks for this.
PyObject* arrayInterface(PyObject* self, void* /*unused*/) {
    const QImage pixels = rgbaPixels(imageOf(self));
    return Py_BuildValue("{s(iii)sssisy#}", "shape", pixels.height(), pixels.width(), 4, "typestr",
                         "|u1", "version", 3, "data",
                         reinterpret_cast<const char*>(pixels.constBits()),
                         static_cast<Py_ssize_t>(pixels.sizeInBytes()));
}

PyMethodDef methods[] = {{"to_png", toPng, METH_NOARGS, "The image as the bytes of a PNG file"},
                         {nullptr, nullptr, 0, nullptr}};

PyGetSetDef properties[] = {
    {"__array_interface__", arrayInterface, nullptr, "The pixels for array libraries", nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr}};

}  // namespace

PyTypeObject* imageBase() {
    static PyTypeObject* s_type = nullptr;
    if (s_type)
        return s_type;
    PyType_Slot slots[] = {{Py_tp_richcompare, reinterpret_cast<void*>(compare)},
                           // Pixels may change.
                           {Py_tp_hash, reinterpret_cast<void*>(PyObject_HashNotImplemented)},
                           {Py_tp_repr, reinterpret_cast<void*>(represent)},
                           {Py_tp_methods, methods},
                           {Py_tp_getset, properties},
                           {Py_bf_getbuffer, reinterpret_cast<void*>(getBuffer)},
                           {Py_bf_releasebuffer, reinterpret_cast<void*>(releaseBuffer)},
                           {0, nullptr}};
    PyType_Spec definition{
        "tamrix.Pixels", sizeof(NativeHolder), 0,
        Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots};
    s_type = reinterpret_cast<PyTypeObject*>(
        PyType_FromSpecWithBases(&definition, reinterpret_cast<PyObject*>(NativeHolder::s_type)));
    return s_type;
}

}  // namespace Tamrix::PythonPlugin
