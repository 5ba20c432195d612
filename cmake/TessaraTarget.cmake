# What every target of the project has in common: the language, the warnings and the include root.
function(tessara_target target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
        $<$<BOOL:${TESSARA_WARNINGS_AS_ERRORS}>:-Werror>
        # GCC 12 takes a text in front of a std::string for an overlapping copy (its bug 105329).
        $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
    target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}/src")
endfunction()

# The widgets of the folder that calls it, as a library of its own.
function(tessara_widget_library target)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets)
    file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
    add_library(${target} STATIC ${sources})
    tessara_target(${target})
    set_target_properties(${target} PROPERTIES AUTOMOC ON LINKER_LANGUAGE CXX)
    target_link_libraries(${target} PUBLIC Qt6::Widgets)
    # CMake 3.25 looks for what moc is to do only when a known header has changed: not when one is new.
    if(NOT "${sources}" STREQUAL "$CACHE{${target}_SOURCES}")
        file(REMOVE "${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/timestamp")
        set(${target}_SOURCES "${sources}" CACHE INTERNAL "The files that ${target} was last made of")
    endif()
    target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_KEYWORDS)
endfunction()

# A module that core loads when it first reads a file of some kind. Modules are looked for beside the executable.
function(tessara_codec_module target)
    add_library(${target} MODULE ${ARGN})
    tessara_target(${target})
    target_link_libraries(${target} PRIVATE tessara_core)
    set_target_properties(${target} PROPERTIES LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
    install(TARGETS ${target} LIBRARY DESTINATION "${TESSARA_MODULE_DIR}" COMPONENT program)
endfunction()
