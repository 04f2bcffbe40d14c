/*
 * The image's message sends. Arguments are those of the method: they have to arrive untouched, the
 * vector registers among them, whatever looking the method up does to them. So has x8, where the
 * method is told to put an answer in memory.
 */

    .text

    .set    frameSize, 240
    .set    method, 216         /* its address */
    .set    widening, 224       /* what becomes of its answer */
    .set    copied, 64          /* arguments on the stack, in bytes */

/* Looks the method of x0 up by x1 and continues in it; where its answer has to be widened, calls it.
   For nil the answer is zero, in all registers for integers and vectors; whoever sends to what may be
   nil clears the memory for an answer before. */
    .globl  machoMessageSend
    .hidden machoMessageSend
    .type   machoMessageSend, %function
    .p2align 4
machoMessageSend:
    .cfi_startproc
    cbz     x0, .Lnil
    stp     x29, x30, [sp, #-frameSize]!
    .cfi_def_cfa_offset frameSize
    .cfi_offset x29, -frameSize
    .cfi_offset x30, 8 - frameSize
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
    str     x0, [sp, #method]
    ldp     x0, x1, [sp, #144]
    bl      machoWidening
    str     w0, [sp, #widening]
    mov     w9, w0
    ldr     x16, [sp, #method]
    ldp     q0, q1, [sp, #16]
    ldp     q2, q3, [sp, #48]
    ldp     q4, q5, [sp, #80]
    ldp     q6, q7, [sp, #112]
    ldp     x0, x1, [sp, #144]
    ldp     x2, x3, [sp, #160]
    ldp     x4, x5, [sp, #176]
    ldp     x6, x7, [sp, #192]
    ldr     x8, [sp, #208]
    cbnz    w9, .Lwiden
    .cfi_remember_state
    ldp     x29, x30, [sp], #frameSize
    .cfi_def_cfa sp, 0
    .cfi_restore x29
    .cfi_restore x30
    br      x16

.Lwiden:
    .cfi_restore_state
    sub     sp, sp, #copied
    ldp     x9, x10, [x29, #frameSize]
    ldp     x11, x12, [x29, #frameSize + 16]
    stp     x9, x10, [sp]
    stp     x11, x12, [sp, #16]
    ldp     x9, x10, [x29, #frameSize + 32]
    ldp     x11, x12, [x29, #frameSize + 48]
    stp     x9, x10, [sp, #32]
    stp     x11, x12, [sp, #48]
    blr     x16
    ldr     w9, [x29, #widening]
    lsl     w0, w0, w9          /* by its lowest five bits */
    tbnz    w9, #7, .Lsigned
    lsr     w0, w0, w9
    b       .Lwidened
.Lsigned:
    asr     w0, w0, w9
.Lwidened:
    mov     sp, x29
    ldp     x29, x30, [sp], #frameSize
    .cfi_def_cfa sp, 0
    .cfi_restore x29
    .cfi_restore x30
    ret

.Lnil:
    mov     x1, #0
    movi    d0, #0
    movi    d1, #0
    movi    d2, #0
    movi    d3, #0
    ret
    .cfi_endproc
    .size   machoMessageSend, . - machoMessageSend

    .section .note.GNU-stack, "", %progbits
