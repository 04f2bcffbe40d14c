/*
 * Functions with variable arguments. Images put these on the stack, all of them, in slots of eight
 * bytes; functions of this system look for the first ones in registers. A va_list can say that the
 * registers are used up and that the rest is at some place of the stack; so each function continues
 * in its form that takes one.
 *
 * An image's own va_list is nothing but that place.
 */

    .text

/* \name stands for \function, of which \fixed arguments come before the va_list. The image passes
   variable arguments, or (\isList) a va_list. */
.macro VARIABLE_ARGUMENTS name, function, fixed, isList=0
    .globl  \name
    .hidden \name
    .type   \name, %function
    .p2align 4
\name:
    .cfi_startproc
    stp     x29, x30, [sp, #-48]!
    .cfi_def_cfa_offset 48
    .cfi_offset x29, -48
    .cfi_offset x30, -40
    .if !\isList
    add     x\fixed, sp, #48            // the first variable argument
    .endif
    mov     x29, sp
    .cfi_def_cfa_register x29
    stp     x\fixed, xzr, [sp, #16]     // __stack, __gr_top
    stp     xzr, xzr, [sp, #32]         // __vr_top; __gr_offs and __vr_offs: no register is left
    add     x\fixed, sp, #16
    bl      \function
    ldp     x29, x30, [sp], #48
    .cfi_def_cfa sp, 0
    .cfi_restore x29
    .cfi_restore x30
    ret
    .cfi_endproc
    .size   \name, . - \name
.endm

VARIABLE_ARGUMENTS machoNSLog, NSLogv, 1
VARIABLE_ARGUMENTS machoNSLogv, NSLogv, 1, isList=1
VARIABLE_ARGUMENTS machoPrintf, vprintf, 1
VARIABLE_ARGUMENTS machoVprintf, vprintf, 1, isList=1
VARIABLE_ARGUMENTS machoSprintf, vsprintf, 2
VARIABLE_ARGUMENTS machoVsprintf, vsprintf, 2, isList=1
VARIABLE_ARGUMENTS machoSnprintf, vsnprintf, 3
VARIABLE_ARGUMENTS machoVsnprintf, vsnprintf, 3, isList=1
VARIABLE_ARGUMENTS machoAsprintf, vasprintf, 2
VARIABLE_ARGUMENTS machoVasprintf, vasprintf, 2, isList=1

    .section .note.GNU-stack, "", %progbits
