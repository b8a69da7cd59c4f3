"""The screens of the program, to the letter. Colours stand before what they colour: <T> is bright teal."""

from terminal_session import ON_WINDOWS

TARGET = "Windows/11-BD1 ~ Vessa" if ON_WINDOWS else "Linux/11-BD1 ~ Vessa"
INTERFACE = "WinAPI" if ON_WINDOWS else "Linux API"

MAIN_MENU = """\
<g>Kelvara v0.7.3 Build 9474    ( see README.md )
<t>Written by: The Kelvara Developers

<white>Distribute Freely - Please report any bugs.

Tuning: <G> TARGET<white>  -  <P>Bulldozer (x64 XOP)

<T>  0         Benchmark Pi  (all in ram)
  1         Component Stress Tester
  2         Run I/O Performance Analysis

<Y>  3         Custom Compute a Constant
                -   Compute other constants (e, Golden Ratio, etc...)
                -   Choose your own settings (use disk for large computations)

<G>  4         BBP Digit Extractor for Pi
  5         Ordalis

<t>  6         Advanced Options
  7         About
<white>

Enter your choice:
option: <T>""".replace("TARGET", TARGET)

ABOUT = """
<G>Kelvara - Euler's Constant to the eXtReMe

<g>Version: 0.7.3 Build 9474
<t>Written by: The Kelvara Developers

<white>Kelvara computes various mathematical constants to as many digits as the
computer holds.

It began as a small program specialised for the Euler-Mascheroni constant.
It has since gained the ability to compute other constants.

For all overclockers:
Kelvara is a multi-threaded Pi benchmark written by a
computer-enthusiast just like you. Enjoy :)

<G>Disclaimer:
Performing large multi-threaded computations using this program may
subject your computer to extremely high levels of stress for extended
periods of time. To protect your computer, MAKE SURE that your hardware
is stable and fit before performing large computations. I will take
absolutely no responsibility for any damage that may be caused by this
program.

This software is provided "as is", without any guarantee made to its
suitability or fitness for any particular use. It may contain bugs so use
of this program is at your own risk. I take no responsibility for any
damage that may unintentionally be caused through its use.
<white>"""

ADVANCED_OPTIONS = """\
<P>Advanced Options
<white>
<T>  0         Benchmark Validator
  1         Log(n) Formula Generator
  2         Hardware Features
  3         Compilation Options
<Y>  4         Test Swap Multiply
<white>
option: <T>"""

COMPILATION_INTRODUCTION = """\
Like any other program, Kelvara is highly configurable at compile-time.
Below is a partial list of compilation options used for this binary.

Press any key to continue . . . 

"""

FEATURE_CONTROLS = """\
<T>================================================================
<Y>Global Feature Controls
<white>
Assertions:
    Array Overrun Detection             <G>Enabled<white>
    Parameter Assertions                <R>Disabled<white>
    Result Assertions                   <G>Enabled<white>
    Alignment Assertions                <R>Disabled<white>

Developer:
    Developer Toolbox                   <R>Disabled<white>
    Crash Debugging                     <R>Disabled<white>
    Catch Exceptions                    <G>Enabled<white>
    Allocation Heap Failure Dumps       <R>Disabled<white>
    Swap File Safety Buffer             <G>Enabled<white>
    Print All The Things!!!             <R>Disabled<white>
    Show Memory Breakdowns              <R>Disabled<white>
    Show Disk Usage                     <R>Disabled<white>
    Allow Checkpoint Hashfails          <R>Disabled<white>
    Swap Mode without Permissions       <R>Disabled<white>
    Enable SRTv2 Fixup Printing         <R>Disabled<white>

Toggleable Features*:
    HWBOT Data Files                    <R>Disabled<white>
    Integrity Check                     <G>Enabled<white>
    Double-Double Float Indexing        <R>Disabled<white>
    Pi - Reduced Memory Mode            <R>Disabled<white>
    EulerGamma Parameter Override       <R>Disabled<white>
    Legacy x86                          <G>Enabled<white>
    07-PNR ~ Ombra                      <R>Disabled<white>
    08-NHM ~ Pelt                       <G>Enabled<white>
    14-BDW ~ Tarn                       <G>Enabled<white>
    16-KNL                              <G>Enabled<white>
    17-SKX ~ Quill                      <G>Enabled<white>
    18-CNL                              <R>Disabled<white>

*Includes experimental, incomplete, and deprecated features.

"""

# Sections in the order on screen, their lines without colours.
SECTIONS = [
    ("Public Library", [
        "Console IO              " + INTERFACE,
        "Time                    " + INTERFACE,
        "File IO                 " + INTERFACE,
    ]),
    ("Internal Libraries", ["RaidFile                " + INTERFACE]),
    ("External Dependencies and Bundled Apps", [
        "Ordalis:",
        "    raw_to_hex          SSE2",
        "    raw_to_dec          SSE2",
        "    hex_to_raw          SSE2",
        "    dec_to_raw          SSE2",
        "    u32_to_h8           SSE4.1",
        "    u32_to_d8           SSE4.1",
        "    u64_to_h16          AVX-512",
        "    u64_to_d19          AVX-512",
        "    h16_to_u64          AVX-512",
        "    d19_to_u64          AVX-512",
        "",
        "BBP Digit Extractor:",
        "    Primary Algorithm           f64v1_AVX512",
        "                                f64v1_AVX2",
        "                                f64v1_XOP",
        "                                f64v1_SSE2",
        "                                f64v1_Native",
    ]),
    ("Kelvara", [
        "Compilation Mode        Single Module",
        "Modules Library         Statically Linked",
        "InvSqrt Purturb         Enabled",
        "Reciprocal Purturb      Enabled",
        "",
        "Word Sizes",
        "    cdi Binary Size     64 bits",
        "    cdi Decimal Size    19 digits",
    ]),
    ("Modules Library", [
        "Build Version           0.7.3.9474",
        "Target Machine          " + TARGET,
        "Compiler                *",
        "Version                 *",
        "Compile Date            *",
        "",
        "Pointer Size:           64 bits",
        "Index Size:             64 bits",
        "Data Alignment:         64 bytes",
        "Uber-Tier Algorithms:   Enabled",
        "",
        "Basic: 32-bit Word:",
        "    Basecase/Karatsuba  116 words",
        "    Floating-Point FFT  20480 words",
        "    VST Algorithm       10307921510400 words",
        "    64-bit NTT          126100789566373888 words",
        "",
        "Basic: 64-bit Word:",
        "    Basecase/Karatsuba  58 words",
        "    Floating-Point FFT  10240 words",
        "    VST Algorithm       5153960755200 words",
        "    64-bit NTT          63050394783186944 words",
        "",
        "MULB_ci:",
        "    Kernels             x64 Native",
        "    qmb_MULB_c32i_sqrB  qmh_MULB_c32i_v0_sqrB_Default_mul64_u0",
        "    qmb_MULB_c32i_elmB  qmh_MULB_c32i_v0_elmB_Default_mul64_u0",
        "    qmb_MULB_c32i_mulB  qmh_MULB_c32i_v0_mulB_Default_mul64_u0",
        "    qmb_MULB_c32i_sqr   qmh_MULB_c32i_v0_sqrK_Default_u0",
        "    qmb_MULB_c32i_elm   qmh_MULB_c32i_v0_elmK_Default_u0",
        "    qmb_MULB_c32i_mul   qmh_MULB_c32i_v0_mulK_Default_u0",
        "    qmb_MULB_c64i_sqrB  qmh_MULB_c64i_v0_sqrB_Default_mul64_u0",
        "    qmb_MULB_c64i_elmB  qmh_MULB_c64i_v0_elmB_Default_mul64_u0",
        "    qmb_MULB_c64i_mulB  qmh_MULB_c64i_v0_mulB_Default_mul64_u0",
        "    qmb_MULB_c64i_sqr   qmh_MULB_c64i_v0_sqrK_Default_u0",
        "    qmb_MULB_c64i_elm   qmh_MULB_c64i_v0_elmK_Default_u0",
        "    qmb_MULB_c64i_mul   qmh_MULB_c64i_v0_mulK_Default_u0",
        "",
        "FFTv3 (Short Vector FMA):",
        "    Kernels             f64v1: x64 AVX-512",
        "                        f64v1: x64 AVX2",
        "                        f64v1: x64 FMA4 ~ Vessa",
        "                        f64v1: x64 SSE2",
        "                        f64v1: x64 Native",
        "",
        "NTT32:",
        "    Kernels             i32v2: x64 AVX-512",
        "                        i32v2: x64 AVX2",
        "                        i32v2: x64 Native",
        "    Sizes               Specialized Limit Table",
        "",
        "NTT64:",
        "    Kernels             i64v1: x64 AVX-512",
        "                        i64v1: x64 Native",
        "    Sizes               Specialized Limit Table",
        "",
        "HNTs (Hybrid NTT):",
        "    Kernels             w128:  x64 Native",
        "    Sizes               Specialized Limit Table",
        "",
        "VSTv2:",
        "    Kernels             f64v1: x64 AVX-512",
        "                        f64v1: x64 AVX2",
        "                        f64v1: x64 XOP ~ Vessa",
        "                        f64v1: x64 SSE2",
        "                        f64v1: x64 Native",
        "    Sizes               Specialized Limit Table",
        "",
        "MULv3:",
        "    c32i_sqr: Basecase - Karatsuba      16 iwords",
        "    c32i_mul: Basecase - Karatsuba      18 iwords",
        "    c64i_sqr: Basecase - Karatsuba      15 iwords",
        "    c64i_mul: Basecase - Karatsuba      14 iwords",
    ]),
    ("Objects Library", [
        "Verbose Status          Disabled",
        "",
        "ExactFloat:",
        "    Basecase clen       20 words",
        "",
        "BigFloat:",
        "    Extra Precision     2 words",
        "    Addition Buffer     128 words",
        "",
        "SwapFloat:",
        "    Malloc Extra        4 words",
    ]),
]
