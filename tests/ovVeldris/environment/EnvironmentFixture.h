// The base of tests of the environment tools: textures from references, and faces read back.
#pragma once

#include <cstring>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/environment/EnvironmentReference.h>

class EnvironmentFixture : public EffectFixture {
protected:
    /// A loaded float texture with every mip of a reference.
    ovMemory::UniquePtr<ovGraphics::Texture>
    makeEnvironment(const environmentReference::Environment& environment) {
        auto texture = ovGraphics::Texture::create(&getGraphics());
        texture->setName("environment");
        texture->setFormat(ovGraphics::FORMAT::R32G32B32A32_FLOAT);
        texture->setTexType(environment.cube ? ovGraphics::TEXTURE_TYPE::CUBE
                                             : ovGraphics::TEXTURE_TYPE::TEXTURE_2D);
        texture->setWidth(environment.mips[0][0].width);
        texture->setHeight(environment.mips[0][0].height);
        texture->setMipCount(unsigned(environment.mips.size()));
        for (unsigned int mip = 0; mip < environment.mips.size(); ++mip)
            for (unsigned int slice = 0; slice < environment.mips[mip].size(); ++slice)
                texture->setCpuData(slice, mip, bytesOf(environment.mips[mip][slice]));
        EXPECT_TRUE(texture->load()) << getGraphicsLogger().getText();
        return texture;
    }

    /// A new texture for a tool to draw into.
    ovMemory::UniquePtr<ovGraphics::Texture> makeOutput() {
        auto texture = ovGraphics::Texture::create(&getGraphics());
        texture->setName("output");
        return texture;
    }

    static ovMemory::BufferView<const unsigned char> bytesOf(const FloatPicture& picture) {
        return {reinterpret_cast<const unsigned char*>(picture.pixels.data()),
                picture.pixels.size() * sizeof(FloatPixel)};
    }

    /// One mip of one slice of a loaded R32G32B32A32_FLOAT texture.
    static FloatPicture readSlice(ovGraphics::Texture& texture, unsigned int slice, unsigned int mip) {
        FloatPicture picture(std::max(1u, texture.getWidth() >> mip),
                             std::max(1u, texture.getHeight() >> mip));
        const auto bytes = texture.readBack(slice, mip);
        if (texture.getFormat() != ovGraphics::FORMAT::R32G32B32A32_FLOAT || !bytes ||
            bytes->size() != picture.pixels.size() * sizeof(FloatPixel)) {
            ADD_FAILURE() << "slice " << slice << ", mip " << mip << " cannot be read as floats";
            return picture;
        }
        std::memcpy(picture.pixels.data(), bytes->data(), bytes->size());
        return picture;
    }

    /// What a function of its direction gives for each texel of a face.
    template <typename Function>
    static FloatPicture drawFace(unsigned int face, unsigned int size, const Function& function) {
        FloatPicture picture(size, size);
        for (unsigned int y = 0; y < size; ++y)
            for (unsigned int x = 0; x < size; ++x) {
                const environmentReference::Color color =
                    function(environmentReference::texelDirection(face, x, y, size));
                for (std::size_t i = 0; i < 4; ++i)
                    picture.at(x, y)[i] = float(color[i]);
            }
        return picture;
    }
};
