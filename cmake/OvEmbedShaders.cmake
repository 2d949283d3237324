# ov_embed_shaders(<target> [NAMESPACE <namespace>] [ALSO <other file>...])
#
# Turns every *.ovsl file below the calling folder into a constant of <namespace>::embedded (default: <target>):
# src/ovVeldris/effects/FxaaEffect.pixel.ovsl becomes `inline constexpr StringView FxaaEffect_pixel`, in the
# generated header <namespace>/EmbeddedShaders.h, which sources include (it is never installed). The text is
# embedded byte for byte. Other files keep their ending: examples/lua/scene.lua becomes `scene_lua`.
function(ov_embed_shaders target)
    cmake_parse_arguments(arg "" "NAMESPACE" "ALSO" ${ARGN})
    set(namespace ${target})
    if(arg_NAMESPACE)
        set(namespace ${arg_NAMESPACE})
    endif()
    file(GLOB_RECURSE shaders CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.ovsl")
    list(APPEND shaders ${arg_ALSO})
    set(generated_dir "${CMAKE_CURRENT_BINARY_DIR}/generated")
    set(header "${generated_dir}/${namespace}/EmbeddedShaders.h")
    set(script "${PROJECT_SOURCE_DIR}/cmake/OvEmbedShadersScript.cmake")
    string(REPLACE ";" "," shader_list "${shaders}")
    add_custom_command(OUTPUT "${header}"
        COMMAND ${CMAKE_COMMAND} "-DOUTPUT=${header}" "-DNAMESPACE=${namespace}" "-DSHADERS=${shader_list}" -P "${script}"
        DEPENDS ${shaders} "${script}" VERBATIM)
    add_custom_target(${target}EmbeddedShaders DEPENDS "${header}")
    if(NOT TARGET generated_headers)
        add_custom_target(generated_headers COMMENT "Headers that checkers of single files need")
    endif()
    add_dependencies(generated_headers ${target}EmbeddedShaders)
    target_sources(${target} PRIVATE "${header}")
    target_include_directories(${target} PRIVATE "${generated_dir}")
endfunction()
