; TSAVE and TLOAD: the monitor's own tape code, through the cassette ports.
;
; Every write to port 0x50 is an edge; the emulator writes the time since the
; previous edge into the wave file as a run of samples (80 T-states each).
; Every read of port 0x59 takes the next sample of the input file, its level
; in bit 5. So the saver times its edges, and the loader counts samples:
;
;   leader  LEADER_RUNS short runs
;   sync    one run of about 40 samples
;   data    8 runs a byte, bit 7 first: short (~10 samples) 0, long (~20) 1
;           start (2 bytes), length (2 bytes), the bytes, their sum (1 byte)
;   tail    a few short runs
;
; Interrupts are off meanwhile, so the run lengths are what the delays make
; them; the motor bit (port 5 bit 6) is on.

PORT_TAPE_OUT   equ 0x50
PORT_TAPE_IN    equ 0x59
TAPE_BIT        equ 0x20
MOTOR_ON        equ 0x40
LEADER_RUNS     equ 256
RUN_SHORT       equ 50          ; delay loops of 13 T-states
RUN_LONG        equ 110
RUN_SYNC        equ 230
SHORT_MAX       equ 15          ; runs below this many samples are 0 bits
SYNC_MIN        equ 30          ; runs of this many samples or more are a sync
LEADER_MIN      equ 64          ; short runs in a row before a sync counts
SEEK_RUNS_HI    equ 4           ; give up after 4 x 256 runs without a sync

; TSAVE start end: the bytes from start to end (inclusive).
cmd_tsave:
        call need_hex
        push de
        call need_hex
        call end_of_args
        pop hl
        ex de,hl                ; HL = end, DE = start
        or a
        sbc hl,de
        jp c,err_number
        inc hl
        ld (tape_len),hl
        ld (tape_start),de
        di
        ld a,MOTOR_ON
        out (PORT_TONE_HI),a
        ld de,LEADER_RUNS
_lead:  ld a,RUN_SHORT
        call tape_run
        dec de
        ld a,d
        or e
        jr nz,_lead
        ld a,RUN_SYNC
        call tape_run
        ld hl,tape_start
        ld b,4
_head:  ld a,(hl)
        call tape_byte
        inc hl
        djnz _head
        ld hl,(tape_start)
        ld de,(tape_len)
        ld c,0
_body:  ld a,(hl)
        add a,c
        ld c,a
        ld a,(hl)
        call tape_byte
        inc hl
        dec de
        ld a,d
        or e
        jr nz,_body
        ld a,c
        call tape_byte
        ld b,8
_tail:  ld a,RUN_SHORT
        call tape_run
        djnz _tail
        out (PORT_TAPE_OUT),a   ; the edge that closes the last run
        ld hl,msg_saved
        jr tape_done

; TLOAD: the next program on the tape, to the address it was saved from.
cmd_tload:
        call end_of_args
        di
        ld a,MOTOR_ON
        out (PORT_TONE_HI),a
        in a,(PORT_TAPE_IN)
        and TAPE_BIT
        ld (tape_level),a
        ld de,0                 ; runs looked at
_seek:  ld c,0                  ; short runs in a row
_lead:  inc de
        ld a,d
        cp SEEK_RUNS_HI
        jr nc,tape_bad
        call read_run
        cp SHORT_MAX
        jr nc,_long
        ld a,c
        cp LEADER_MIN
        jr nc,_lead
        inc c
        jr _lead
_long:  cp SYNC_MIN
        jr c,_seek
        ld a,c
        cp LEADER_MIN
        jr c,_seek
        ld hl,tape_start
        ld b,4
_head:  call read_byte
        ld (hl),a
        inc hl
        djnz _head
        ld hl,(tape_start)
        ld de,(tape_len)
        ld c,0
_body:  call read_byte
        ld (hl),a
        add a,c
        ld c,a
        inc hl
        dec de
        ld a,d
        or e
        jr nz,_body
        call read_byte
        cp c
        jr nz,tape_bad
        ld hl,msg_loaded
tape_done:
        call tape_off
        call put_text
        ld hl,(tape_start)
        call put_hex4
        ld a,'-'
        call put_char
        ld de,(tape_len)
        add hl,de
        dec hl
        call put_hex4
        ld a,13
        jp put_char

tape_bad:
        call tape_off
        ld hl,msg_tape
        jp error

tape_off:
        xor a
        out (PORT_TONE_HI),a
        ei
        ret

; An edge, then A delay loops: the run that the next edge writes.
tape_run:
        out (PORT_TAPE_OUT),a
        push bc
        ld b,a
_wait:  djnz _wait
        pop bc
        ret

; A as 8 runs, bit 7 first.
tape_byte:
        push bc
        ld c,a
        ld b,8
_bit:   rlc c
        ld a,RUN_SHORT
        jr nc,_send
        ld a,RUN_LONG
_send:  call tape_run
        djnz _bit
        pop bc
        ret

; A = the length in samples (1-255) of the run at the current level; the
; sample that differs begins the next run.
read_run:
        push bc
        ld a,(tape_level)
        ld c,a
        ld b,1
_more:  in a,(PORT_TAPE_IN)
        and TAPE_BIT
        cp c
        jr nz,_flip
        inc b
        jr nz,_more
        dec b
        jr _done
_flip:  ld (tape_level),a
_done:  ld a,b
        pop bc
        ret

; A = the next byte; a run too long for a bit is a tape error.
read_byte:
        push bc
        ld b,8
_bit:   call read_run
        cp SYNC_MIN
        jr nc,_bad
        cp SHORT_MAX
        ccf
        rl c
        djnz _bit
        ld a,c
        pop bc
        ret
_bad:   pop bc
        jr tape_bad

msg_saved:      db "Saved ",0
msg_loaded:     db "Loaded ",0
msg_tape:       db "Tape error",0
