# The one list of warning flags for every target of the project.
set(SYSFUNCS_WARNINGS -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Wcast-align -Woverloaded-virtual)

# Narrow literals become the run-time code page: GB18030 gives every GBK text its GBK bytes.
if(SYSFUNCS_CHARSET STREQUAL "GB18030")
  set(SYSFUNCS_CHARSET_FLAGS -finput-charset=UTF-8 -fexec-charset=GB18030)
elseif(SYSFUNCS_CHARSET STREQUAL "UTF-8")
  set(SYSFUNCS_CHARSET_FLAGS -finput-charset=UTF-8 -fexec-charset=UTF-8)
else()
  message(FATAL_ERROR "SYSFUNCS_CHARSET must be GB18030 or UTF-8, not '${SYSFUNCS_CHARSET}'")
endif()

function(sysfuncs_target_options target)
  target_compile_options(${target} PRIVATE ${SYSFUNCS_WARNINGS} ${SYSFUNCS_CHARSET_FLAGS})
endfunction()
