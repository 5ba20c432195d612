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
