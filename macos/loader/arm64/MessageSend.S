/*
 * The image's message sends. Arguments are those of the method: they have to arrive untouched, the
 * vector registers among them, whatever looking the method up does to them. So has x8, where the
 * method is told to put an answer in memory.
 */

    .text

/* Looks the method of x0 up by x1 and continues in it. For nil the answer is zero, in all registers
   for integers and vectors; whoever sends to what may be nil clears the memory for an answer before. */
    .globl  machoMessageSend
    .hidden machoMessageSend
    .type   machoMessageSend, %function
    .p2align 4
machoMessageSend:
    .cfi_startproc
    cbz     x0, 1f
    stp     x29, x30, [sp, #-224]!
    .cfi_def_cfa_offset 224
    .cfi_offset x29, -224
    .cfi_offset x30, -216
    mov     x29, sp
    .cfi_def_cfa_register x29
    stp     q0, q1, [sp, #16]
    stp     q2, q3, [sp, #48]
    stp     q4, q5, [sp, #80]
    stp     q6, q7, [sp, #112]
    stp     x0, x1, [sp, #144]
    stp     x2, x3, [sp, #160]
    stp     x4, x5, [sp, #176]
    stp     x6, x7, [sp, #192]
    str     x8, [sp, #208]
    bl      objc_msg_lookup
    mov     x16, x0
    ldp     q0, q1, [sp, #16]
    ldp     q2, q3, [sp, #48]
    ldp     q4, q5, [sp, #80]
    ldp     q6, q7, [sp, #112]
    ldp     x0, x1, [sp, #144]
    ldp     x2, x3, [sp, #160]
    ldp     x4, x5, [sp, #176]
    ldp     x6, x7, [sp, #192]
    ldr     x8, [sp, #208]
    ldp     x29, x30, [sp], #224
    .cfi_def_cfa sp, 0
    .cfi_restore x29
    .cfi_restore x30
    br      x16
1:
    mov     x1, #0
    movi    d0, #0
    movi    d1, #0
    movi    d2, #0
    movi    d3, #0
    ret
    .cfi_endproc
    .size   machoMessageSend, . - machoMessageSend

    .section .note.GNU-stack, "", %progbits
