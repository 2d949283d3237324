// A project of a small model on disk.
#pragma once

#include <veldris/SessionTesting.h>
#include <veldris/commands/ModelFile.h>
#include <veldris/projects/ProjectMaking.h>
#include <veldris/scene/ModelReading.h>

/// The project "x" of the quad of writeQuad() in a folder of its own.
struct QuadProject {
    /// @param material members added to the material's object
    explicit QuadProject(const ovMemory::String& material = "") {
        ovMemory::String error;
        EXPECT_TRUE(veldris::ProjectFiles::find(folder.getPath("p/x.ovs"), files, error)) << error;
        veldris::Session session;
        openOnSoftware(session);
        const auto loaded = ovVeldris::ModelLoader(&session.getSystem()).load(writeQuad(folder, material));
        EXPECT_TRUE(loaded) << loaded.error;
        EXPECT_TRUE(veldris::prepareProject(files));
        const ovMemory::Result written = veldris::writeModelProject(session, *loaded.model, files);
        EXPECT_TRUE(written) << written.error;
    }

    static ovMemory::String read(const ovMemory::String& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static void write(const ovMemory::String& path, ovMemory::StringView bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    /// Replaces a text that a file has once.
    static void edit(const ovMemory::String& path, ovMemory::StringView from, ovMemory::StringView to) {
        ovMemory::String text = read(path);
        const std::size_t place = text.find(from);
        ASSERT_NE(place, ovMemory::String::npos) << from;
        write(path, text.replace(place, from.size(), to));
    }

    TemporaryFolder folder;
    veldris::ProjectFiles files;
};
