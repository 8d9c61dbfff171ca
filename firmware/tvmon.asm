; TVMON, the system ROM of this emulator: a small monitor for the TV
; Computer. The 16 KB image fills the system ROM sockets (0x0000-0x3FFF
; after reset); the build cuts it into the two 8 KB files of each ROM set.
;
; It uses the unprefixed instructions only, apart from IM 1 and RETN, so it
; makes no demands on the rest of the processor.

        include "hw.inc"
        include "vars.inc"

        org 0x0000
reset:  di
        ld sp,STACK_TOP
        jp cold_start

        ds 0x08-$,0xFF
rst08:  jp put_char             ; RST 08h: print the character in A
        ds 0x10-$,0xFF
rst10:  jp get_key              ; RST 10h: wait for a key, return it in A
        ds 0x18-$,0xFF
rst18:  jp put_text             ; RST 18h: print the text at HL up to a 0 byte
        ds 0x20-$,0xFF
rst20:  jp monitor              ; RST 20h: back to the monitor's prompt

        ds 0x38-$,0xFF
        jp irq                  ; IM 1: the once-a-frame cursor interrupt

        ds 0x66-$,0xFF
nmi:    retn                    ; nothing raises NMI; return if something does

cold_start:
        ; Quiet, safe latches first: reset leaves port 5 with the sound
        ; interrupt enabled and the tone bit set.
        xor a
        out (PORT_PAGE),a
        out (PORT_VPAGE),a
        out (PORT_KBD_ROW),a
        out (PORT_TONE_LO),a
        out (PORT_TONE_HI),a
        ld a,STROBE_HIGH + MODE_2
        out (PORT_MODE),a

        ld hl,VARS
        ld b,0
        xor a
_clear: ld (hl),a
        inc hl
        djnz _clear
        ld a,STROBE_HIGH + MODE_2
        ld (port6),a
        ld a,0xFF
        ld (rep_pos),a

        call crtc_init
        call detect_ram
        call colours_default
        call cls
        im 1
        ei
        call cart_start         ; comes back without a signed cartridge, or when it returns

        ld hl,banner
        call put_text
        ld hl,ram_64
        ld a,(ram_k)
        cp 64
        jr z,_ram
        ld hl,ram_32
_ram:   call put_text
        ld hl,banner_end
        call put_text
        ; fall into the monitor

; The prompt loop. Errors come back here with the stack reset, so a command
; may give up from any depth.
monitor:
        ld sp,STACK_TOP
        ei                      ; whatever a program run by GO left behind
        ld a,(cur_col)
        or a
        ld a,13
        call nz,put_char
        ld hl,prompt
        call put_text
        call read_line
        ld a,(line_over)
        or a
        jp nz,err_too_long
        call run_line
        jr monitor

; Registers 0 to 15: 64 columns of 8 pixels, 60 rows of 4 lines (240 video
; lines), the picture centred in the window, the cursor register at address
; 0 with a cursor start of 0 so that its interrupt comes once a frame.
crtc_init:
        ld hl,crtc_values
        ld c,0
_reg:   ld a,c
        out (PORT_CRTC_SEL),a
        ld a,(hl)
        out (PORT_CRTC_DATA),a
        inc hl
        inc c
        ld a,c
        cp 16
        jr nz,_reg
        ret

crtc_values:
        db 99, 64, 75, 10, 77, 2, 60, 66, 0, 3, 0, 3, 0, 0, 0, 0

; RAM size: the 32K machine has no U2 and U3; their reads give 0 there
; though writes are taken. Page U2 in at 0x8000 and see whether a pattern
; stays. Runs before interrupts are enabled.
detect_ram:
        ld a,0x20               ; U2 at 0x8000, everything else as after reset
        out (PORT_PAGE),a
        ld hl,0x8000
        ld a,0x5A
        ld (hl),a
        ld a,(hl)
        cp 0x5A
        jr nz,_small
        ld a,0xA5
        ld (hl),a
        ld a,(hl)
        cp 0xA5
        jr nz,_small
        ld a,64
        jr _done
_small: ld a,32
_done:  ld (ram_k),a
        xor a
        out (PORT_PAGE),a
        ret

; A cartridge that starts with the signature is started at CART+4, with the
; screen set up, interrupts on in IM 1 and the monitor's stack; if it
; returns, the monitor starts as usual.
cart_start:
        ld hl,CART
        ld de,cart_signature
        ld b,4
_cmp:   ld a,(de)
        cp (hl)
        ret nz
        inc hl
        inc de
        djnz _cmp
        jp CART+4

cart_signature:
        db "TVMC"

banner:
        db "TVMON 1.0 system monitor, ",0
ram_64: db "64K RAM",0
ram_32: db "32K RAM",0
banner_end:
        db 13,"Type HELP for the list of commands.",13,0
prompt: db "> ",0

        include "irq.asm"
        include "screen.asm"
        include "input.asm"
        include "commands.asm"
        include "tape.asm"
        include "pictures.asm"
        include "keys.inc"
        include "font.inc"

rom_end:
        if rom_end > 0x4000
        .error The monitor has outgrown its 16 KB
        endif
        ds 0x4000-$,0xFF
