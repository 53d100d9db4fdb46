#include "plugins/python/pythontest.h"

namespace Tamrix {
namespace {

using namespace Test;

TEST_F(PythonTest, ImagesAreValuesOfTheLanguage) {
    EXPECT_EQ(run(R"py(
image = Image(3, 2, 'red')
assert (image.width, image.height, image.stride) == (3, 2, 12)
assert repr(image) == '<Image 3x2>', repr(image)
assert image == Image(image) and image != Image(3, 2) and image != 5
image.setPixel(0, 1, [1, 2, 3, 4])
assert image.getPixelRGBA(0, 1) == [1, 2, 3, 4]
assert image.getPixel(1, 1) == 0xffff0000
assert image.copy(0, 1, 1, 1).width == 1
assert image.to_png()[:4] == b'\x89PNG'
try:
    hash(image)
    assert False
except TypeError:
    pass
for method in (Image.to_png, Image._array, Image.__array_interface__.fget):
    try:
        method(5)
        assert False
    except (TypeError, AttributeError):
        pass
try:
    Image(1)
    assert False
except RuntimeError as error:
    assert str(error) == 'The Image() constructor argument needs to be an image object', error
try:
    Screenshot()
    assert False
except (RuntimeError, TypeError):
    pass
assert issubclass(Screenshot, Image)
)py"),
              "");
}

TEST_F(PythonTest, ImagesAreArraysOfBytes) {
    EXPECT_EQ(run(R"py(
image = Image(3, 2, 'red')
image.setPixel(2, 1, 1, 2, 3, 4)
view = memoryview(image)
assert (view.shape, view.format, view.readonly) == ((2, 3, 4), 'B', True)
assert bytes(view) == b'\xff\x00\x00\xff' * 5 + b'\x01\x02\x03\x04'
assert bytes(image) == view.tobytes()
# The view is a copy of the pixels, and outlives the image.
image.setPixel(0, 0, 0)
del image
assert view[0, 0, 0] == 255
array = Image(1, 1).__array_interface__
assert array == {'shape': (1, 1, 4), 'typestr': '|u1', 'version': 3, 'data': b'\0\0\0\xff'}, array
import io
assert io.BytesIO().write(Image(2, 2)) == 16
try:
    io.BytesIO(b'123').readinto(Image(1, 1))
    assert False
except (BufferError, TypeError):
    pass
)py"),
              "");
}

}  // namespace
}  // namespace Tamrix
