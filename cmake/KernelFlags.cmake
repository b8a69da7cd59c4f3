# Only kernel files may use instructions beyond plain x86-64. The file name says which set:
# "..._avx2.cpp", "..._fma4.cpp", "..._avx512.cpp". Everything else runs on any x86-64 processor.
function(kelvara_set_kernel_flags)
  foreach(source IN LISTS ARGN)
    if(source MATCHES "_avx512\\.cpp$")
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS
        "-mavx512f;-mavx512dq;-mavx512vl;-mavx512bw;-mavx2;-mfma;-mbmi2;-madx;-mprefer-vector-width=512")
    elseif(source MATCHES "_avx2\\.cpp$")
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "-mavx2;-mfma;-mbmi;-mbmi2")
    elseif(source MATCHES "_fma4\\.cpp$")
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "-mavx;-mfma4;-mxop")
    elseif(source MATCHES "_adx\\.cpp$")
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "-mbmi2;-madx")
    elseif(source MATCHES "_sse42\\.cpp$")
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "-msse4.2")
    elseif(source MATCHES "_sse4\\.cpp$")
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "-mssse3;-msse4.1")
    elseif(source MATCHES "_sha\\.cpp$")
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "-mssse3;-msse4.1;-msha")
    endif()
    # Modular arithmetic counts on every product being rounded or fused exactly where it says so.
    if(source MATCHES "/(vst|bbp)/")
      set_property(SOURCE ${source} APPEND PROPERTY COMPILE_OPTIONS "-ffp-contract=off")
    endif()
    # The transforms' chains of dependent operations are long: scheduling before registers are allocated,
    # which the compiler leaves out for this processor, makes them 5 to 8 % faster.
    if(source MATCHES "/(vst|fft)/")
      if(source MATCHES "_avx512\\.cpp$")
        set_property(SOURCE ${source} APPEND PROPERTY COMPILE_OPTIONS
          "-mtune=skylake-avx512;-fschedule-insns;-fsched-pressure")
      elseif(source MATCHES "_avx2\\.cpp$")
        set_property(SOURCE ${source} APPEND PROPERTY COMPILE_OPTIONS
          "-mtune=haswell;-fschedule-insns;-fsched-pressure")
      endif()
    endif()
  endforeach()
endfunction()
