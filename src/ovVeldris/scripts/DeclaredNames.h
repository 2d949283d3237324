// The namespaces and types that scripts see.
#pragma once

#include <ovMemory/Memory.h>

namespace ovVeldris {

/// A name that scripts find. Constants, functions and members come with the bindings.
struct DeclaredName {
    ovMemory::StringView name;
    bool isNamespace = false;
};

/// Every name, in the order in which it is declared: what another one is made of stands before it.
inline constexpr DeclaredName DECLARED_NAMES[] = {
    {"ovExport", true},
    {"ovExport.ExportError"},
    {"ovExport.ExporterLoadResult"},
    {"ovExport.JsonExporter"},
    {"ovExport.Node"},
    {"ovGraphics", true},
    {"ovGraphics.BoundingBox"},
    {"ovGraphics.Camera"},
    {"ovGraphics.CameraManager"},
    {"ovGraphics.Frustum"},
    {"ovGraphics.Compositor"},
    {"ovGraphics.CompositorManager"},
    {"ovGraphics.CompositorNode"},
    {"ovGraphics.Entity"},
    {"ovGraphics.Node"},
    {"ovGraphics.NodeManager"},
    {"ovGraphics.GltfEncoder"},
    {"ovGraphics.Mesh"},
    {"ovGraphics.MeshManager"},
    {"ovGraphics.VertexComponent"},
    {"ovGraphics.VertexComponentArray"},
    {"ovGraphics.VertexComposition"},
    {"ovGraphics.Program"},
    {"ovGraphics.ProgramManager"},
    {"ovGraphics.RenderContext"},
    {"ovGraphics.RenderContextManager"},
    {"ovGraphics.RenderQueue"},
    {"ovGraphics.RenderQueueManager"},
    {"ovGraphics.Shader"},
    {"ovGraphics.ShaderManager"},
    {"ovGraphics.Texture"},
    {"ovGraphics.TextureManager"},
    {"ovGraphics.TextureSaver"},
    {"ovGraphics.TextureUtils"},
    {"ovGraphics.Viewport"},
    {"ovGraphics.ViewportManager"},
    {"ovImages", true},
    {"ovImages.Image"},
    {"ovImages.ImageView"},
    {"ovImages.JpgEncoder"},
    {"ovImages.CompositeEncoder"},
    {"ovMaths", true},
    {"ovMaths.Matrix"},
    {"ovMaths.Quaternion"},
    {"ovMaths.Vector"},
    {"ovMaths.BufferCastVector"},
    {"ovMaths.BufferViewVector"},
    {"ovMaths.MathConstants", true},
    {"ovMemory", true},
    {"ovMemory.Buffer"},
    {"ovMemory.BufferCastInt"},
    {"ovMemory.BufferCastFloat"},
    {"ovMemory.BufferCastDouble"},
    {"ovMemory.BufferView"},
    {"ovMemory.BufferViewInt"},
    {"ovMemory.BufferViewFloat"},
    {"ovMemory.BufferViewDouble"},
    {"ovResources", true},
    {"ovResources.ResourceManager"},
    {"ovScripts", true},
    {"ovScripts.INTERPRETER", true},
    {"ovScripts.COMPILATION_FAILURE_TYPE", true},
    {"ovScripts.CompilationResult"},
    {"ovScripts.Script"},
    {"ovTasks", true},
    {"ovTasks.Scheduler"},
    {"ovTasks.Task"},
    {"ovTasks.Thread"},
    {"ovTasks.ThreadSubmittedWork"},
    {"std", true},
    {"std.array_float_4"},
    {"std.array_array_float_4_4"},
};

} // namespace ovVeldris
