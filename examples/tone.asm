' A tone of about 1 kHz for one second from the machine's tone generator.
' Start it with GO 4000 at the monitor's prompt.
PITCHLO: EQU $3D
PITCHHI: EQU $1F
ORG $4000
        LD A,@PITCHLO     ' pitch $F3D: 195312.5 / (4096 - $F3D) = 1002 Hz
        OUT ($04),A
        LD A,@PITCHHI     ' high pitch bits, and bit 4: tone on
        OUT ($05),A
        LD A,$BC          ' full volume (bits 5-2), strobe high, video mode 0
        OUT ($06),A
        LD B,50
        EI
WAIT:
        HALT              ' one frame
        DJNZ @WAIT
        XOR A
        OUT ($05),A       ' tone off
        LD A,$80
        OUT ($06),A       ' volume 0
        RET
