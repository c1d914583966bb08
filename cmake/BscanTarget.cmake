# What every target of this project has in common.

function(bscan_set_up_target target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    if(PROJECT_IS_TOP_LEVEL)
        target_compile_options(
            ${target}
            PRIVATE
                -Wall
                -Wextra
                -Wpedantic
                -Wconversion
                -Wsign-conversion
                -Wshadow
                -Wold-style-cast
                -Wcast-qual
                -Wnon-virtual-dtor
                -Wundef
        )
    endif()
    # g++ 12 sees overlaps in string additions where there are none.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
    if(BSCAN_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# Only release builds: in others it costs time and hides what a debugger or a profile shows.
function(bscan_optimize_at_link_time target)
    include(CheckIPOSupported)
    check_ipo_supported(RESULT supported OUTPUT reason LANGUAGES CXX)
    set_target_properties(
        ${target} PROPERTIES INTERPROCEDURAL_OPTIMIZATION_RELEASE "${supported}"
    )
endfunction()
