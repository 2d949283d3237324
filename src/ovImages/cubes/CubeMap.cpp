#include <ovImages/cubes/CubeMap.h>

namespace ovImages {

ImageView faceOf(const Image& mip, unsigned int face) {
    ImageView view = mip.view();
    const std::size_t faceSize = view.bytes.size() / FACE_COUNT;
    view.height /= FACE_COUNT;
    view.bytes = view.bytes.subspan(face * faceSize, faceSize);
    return view;
}

ovMemory::BufferView<unsigned char> faceBytesOf(Image& mip, unsigned int face) {
    const std::size_t faceSize = mip.getBytes().size() / FACE_COUNT;
    return mip.getBytes().subspan(face * faceSize, faceSize);
}

} // namespace ovImages
