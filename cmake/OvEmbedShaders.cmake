# ov_embed_shaders(<target> [<namespace>])
#
# Turns every *.ovsl file below the calling folder into a constant of <namespace>::embedded (default: <target>):
# src/ovVeldris/effects/FxaaEffect.pixel.ovsl becomes `inline constexpr StringView FxaaEffect_pixel`, in the
# generated header <namespace>/EmbeddedShaders.h, which sources include (it is never installed). The text is
# embedded byte for byte.
function(ov_embed_shaders target)
    set(namespace ${target})
    if(ARGC GREATER 1)
        set(namespace ${ARGV1})
    endif()
    file(GLOB_RECURSE shaders CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.ovsl")
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
