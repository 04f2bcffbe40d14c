/*
 * The image's message sends. Arguments are those of the method: they have to arrive untouched, the
 * vector registers among them, whatever looking the method up does to them.
 */

    .text

/* Looks the method of \receiver up by \selector and continues in it. For nil the answer is zero: in
   all registers for integers and vectors, and in \longDoubles registers of the floating-point unit.
   An answer in memory (\inMemory) is returned as its address, which comes first; whoever sends to
   what may be nil clears it before. */
.macro MESSAGE_SEND name, receiver, selector, inMemory=0, longDoubles=0
    .globl  \name
    .hidden \name
    .type   \name, @function
    .p2align 4
\name:
    .cfi_startproc
    testq   \receiver, \receiver
    je      1f
    pushq   %rbp
    .cfi_def_cfa_offset 16
    .cfi_offset %rbp, -16
    movq    %rsp, %rbp
    .cfi_def_cfa_register %rbp
    subq    $192, %rsp
    movaps  %xmm0, (%rsp)
    movaps  %xmm1, 16(%rsp)
    movaps  %xmm2, 32(%rsp)
    movaps  %xmm3, 48(%rsp)
    movaps  %xmm4, 64(%rsp)
    movaps  %xmm5, 80(%rsp)
    movaps  %xmm6, 96(%rsp)
    movaps  %xmm7, 112(%rsp)
    movq    %rdi, 128(%rsp)
    movq    %rsi, 136(%rsp)
    movq    %rdx, 144(%rsp)
    movq    %rcx, 152(%rsp)
    movq    %r8, 160(%rsp)
    movq    %r9, 168(%rsp)
    movq    %rax, 176(%rsp)
    movq    %r10, 184(%rsp)
    .ifnc \receiver,%rdi
    movq    \receiver, %rdi
    movq    \selector, %rsi
    .endif
    call    objc_msg_lookup@PLT
    movq    %rax, %r11
    movaps  (%rsp), %xmm0
    movaps  16(%rsp), %xmm1
    movaps  32(%rsp), %xmm2
    movaps  48(%rsp), %xmm3
    movaps  64(%rsp), %xmm4
    movaps  80(%rsp), %xmm5
    movaps  96(%rsp), %xmm6
    movaps  112(%rsp), %xmm7
    movq    128(%rsp), %rdi
    movq    136(%rsp), %rsi
    movq    144(%rsp), %rdx
    movq    152(%rsp), %rcx
    movq    160(%rsp), %r8
    movq    168(%rsp), %r9
    movq    176(%rsp), %rax
    movq    184(%rsp), %r10
    leave
    .cfi_def_cfa %rsp, 8
    .cfi_restore %rbp
    jmp     *%r11
1:
    .if \inMemory
    movq    %rdi, %rax
    .else
    xorl    %eax, %eax
    .endif
    xorl    %edx, %edx
    xorps   %xmm0, %xmm0
    xorps   %xmm1, %xmm1
    .rept \longDoubles
    fldz
    .endr
    ret
    .cfi_endproc
    .size   \name, . - \name
.endm

MESSAGE_SEND machoMessageSend, %rdi, %rsi
MESSAGE_SEND machoMessageSendStructure, %rsi, %rdx, inMemory=1
MESSAGE_SEND machoMessageSendLongDouble, %rdi, %rsi, longDoubles=1
MESSAGE_SEND machoMessageSendTwoLongDoubles, %rdi, %rsi, longDoubles=2

    .section .note.GNU-stack, "", @progbits
