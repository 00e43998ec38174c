# Compiles src/library/Corvina.idl into Corvina.tlb, Corvina.h and Corvina_i.c.
#
# corvina_idl: link it to include the generated "Corvina.h"; its compiled half holds the GUIDs.

set(idl "${CMAKE_CURRENT_SOURCE_DIR}/src/library/Corvina.idl")
set(generated "${CMAKE_CURRENT_BINARY_DIR}/generated")
set(CORVINA_TLB "${generated}/Corvina.tlb")
file(MAKE_DIRECTORY "${generated}")

if(MSVC)
  add_custom_command(
    OUTPUT "${generated}/Corvina.h" "${generated}/Corvina_i.c" "${CORVINA_TLB}"
    COMMAND midl /nologo /env win32 /W1 /WX /h Corvina.h /iid Corvina_i.c /tlb Corvina.tlb
            /out "${generated}" "${idl}"
    DEPENDS "${idl}"
    VERBATIM)
else()
  # Wine's IDL compiler has no option that makes its warnings errors, so the wrapper does.
  add_custom_command(
    OUTPUT "${generated}/Corvina.h" "${generated}/Corvina_i.c" "${CORVINA_TLB}"
    COMMAND sh "${CMAKE_CURRENT_LIST_DIR}/widl-strict.sh" "${idl}" "${generated}"
    DEPENDS "${idl}" "${CMAKE_CURRENT_LIST_DIR}/widl-strict.sh"
    VERBATIM)
endif()

add_custom_target(corvina_idl_outputs
  DEPENDS "${generated}/Corvina.h" "${generated}/Corvina_i.c" "${CORVINA_TLB}")

add_library(corvina_idl STATIC "${generated}/Corvina_i.c")
target_include_directories(corvina_idl SYSTEM PUBLIC "${generated}")
add_dependencies(corvina_idl corvina_idl_outputs)
