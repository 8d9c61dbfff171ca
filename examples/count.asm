' Counts A up while B counts down, for stepping in the workbench:
' Compile, RUN (RegPC = 10000), RUN CPU stops at the first *BREAK; then
' Step in the CPU monitor (View, Debug) and tick "Debug" here: the listing
' marks the line of the next instruction.
org 10000
        ld a,0
        ld b,3
        *break
LOOP:
        inc a
        djnz @LOOP
        *break
        halt
