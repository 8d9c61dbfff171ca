"""One-line descriptions of the instructions, for the opcode help panel.

Register names are written in lower case, as the panel shows the mnemonic in
lower case too. The words must not hold "|", ">" or "<", which delimit the
fields of a help row.
"""

COND_TEXT = {
    "NZ": "the zero flag is reset",
    "Z": "the zero flag is set",
    "NC": "the carry flag is reset",
    "C": "the carry flag is set",
    "PO": "the parity/overflow flag is reset (parity odd)",
    "PE": "the parity/overflow flag is set (parity even)",
    "P": "the sign flag is reset (plus)",
    "M": "the sign flag is set (minus)",
}


def thing(op):
    """How an operand reads in a sentence."""
    if op == "n":
        return "the byte n"
    if op == "(HL)":
        return "the byte at the address in hl"
    if op.startswith("(I"):
        return "the byte at the address %s+d" % op[1:3].lower()
    if op in ("IXH", "IYH"):
        return "the high byte of " + op[:2].lower()
    if op in ("IXL", "IYL"):
        return "the low byte of " + op[:2].lower()
    return op.lower()


def first_upper(s):
    return s[0].upper() + s[1:]


def when(cc):
    return "" if cc is None else " if " + COND_TEXT[cc]


def copied(copy):
    return "" if copy is None else ", and also copies the result into register " + copy.lower()


NOP = "No operation is performed."
EX_AF = "Exchanges af with the alternate register pair af'."
EXX = "Exchanges bc, de and hl with their alternate pairs bc', de' and hl'."
EX_DE = "Exchanges the contents of de and hl."
DJNZ = ("Decrements b and, unless b has become zero, jumps relative to the next "
        "instruction by the signed offset e.")
DAA = ("Corrects a after a BCD addition or subtraction so that it holds two valid "
       "decimal digits; the n flag tells which was done.")
CPL = "Inverts every bit of a (one's complement)."
SCF = "Sets the carry flag."
CCF = "Inverts the carry flag; h takes its previous value."
HALT = ("Suspends execution until an interrupt or a reset arrives; the processor "
        "keeps running NOPs meanwhile so that memory refresh goes on.")
DI = "Disables the maskable interrupt by resetting iff1 and iff2."
EI = ("Enables the maskable interrupt by setting iff1 and iff2; it is accepted only "
      "after the following instruction.")
STORE_A_NN = "Stores a at address nn."
LOAD_A_NN = "Loads a with the byte at address nn."
OUT_N = "Writes a to port n; a also appears on the high half of the address bus."
IN_N = "Reads port n into a; a gives the high half of the port address. No flags change."
IN_F = "Reads port c and sets the flags from the byte, which is then thrown away."
OUT_0 = "Writes zero to port c; CMOS parts write 255 instead."
NEG = "Negates a: it is subtracted from zero (two's complement)."
RETN = ("Returns from a non-maskable interrupt: iff1 is restored from iff2 and the "
        "return address is popped into pc.")
RETI = ("Returns from a maskable interrupt; the peripheral chips of the Z80 family "
        "recognise this opcode on the bus.")
LD_I_A = "Copies a into the interrupt vector register i."
LD_R_A = "Copies a into the memory refresh register r."
LD_A_I = "Copies i into a; the parity/overflow flag takes the state of iff2."
LD_A_R = "Copies r into a; the parity/overflow flag takes the state of iff2."
RRD = ("Rotates a decimal digit right: the low nibble of the byte at the address in hl "
       "goes to the low nibble of a, the old low nibble of a to the high nibble of that "
       "byte, and its high nibble down to its low nibble.")
RLD = ("Rotates a decimal digit left: the high nibble of the byte at the address in hl "
       "goes to the low nibble of a, the old low nibble of a to the low nibble of that "
       "byte, and its low nibble up to its high nibble.")


def duplicate(name, text):
    return "Undocumented second encoding of %s. %s" % (name, text)


def jr(cc):
    if cc is None:
        return "Jumps relative to the next instruction by the signed offset e (-128 to 127)."
    return "Jumps relative to the next instruction by the signed offset e%s." % when(cc)


def jp(cc):
    return "Jumps to address nn%s." % when(cc)


def jp_reg(rp):
    return "Jumps to the address held in %s (not to the word stored there)." % rp.lower()


def call(cc):
    return ("Pushes the address of the next instruction onto the stack and jumps to "
            "address nn%s." % when(cc))


def ret(cc):
    return "Pops the return address from the stack into pc%s." % when(cc)


def rst(address):
    return ("Pushes the address of the next instruction and calls the fixed address "
            "%02Xh of page zero." % address)


def push(rp):
    return ("Pushes %s onto the stack: sp goes down by two and the pair is stored "
            "there, high byte at the higher address." % rp.lower())


def pop(rp):
    text = "Pops the word on top of the stack into %s; sp goes up by two." % rp.lower()
    if rp == "AF":
        text += " All flags take the popped value."
    return text


def ex_sp(rp):
    return "Exchanges %s with the word on top of the stack; sp does not change." % rp.lower()


def ld_sp(rp):
    return "Copies %s into the stack pointer." % rp.lower()


def ld_pair_imm(rp):
    return "Loads %s with the 16-bit value nn." % rp.lower()


def store_word(rp):
    r = rp.lower()
    return "Stores %s at address nn, low byte first and high byte at nn+1." % r


def load_word(rp):
    r = rp.lower()
    return "Loads %s from address nn, the low byte from nn and the high byte from nn+1." % r


def store_a(rp):
    return "Stores a at the address held in %s." % rp.lower()


def load_a(rp):
    return "Loads a with the byte at the address held in %s." % rp.lower()


def inc16(rp, step):
    verb = "Adds one to" if step > 0 else "Subtracts one from"
    return "%s %s; no flags change." % (verb, rp.lower())


def inc8(reg, step):
    if step > 0:
        return "Adds one to %s." % thing(reg)
    return "Subtracts one from %s." % thing(reg)


def ld8(dst, src):
    if dst == src:
        return "Copies %s into itself: nothing changes." % thing(dst)
    if dst.startswith("("):
        where = thing(dst).replace("the byte at ", "at ")
        return "Stores %s %s." % (thing(src), where)
    return "Loads %s with %s." % (thing(dst), thing(src))


def alu(a, src):
    s = thing(src)
    return [
        "Adds %s to a." % s,
        "Adds %s and the carry flag to a." % s,
        "Subtracts %s from a." % s,
        "Subtracts %s and the carry flag from a." % s,
        "Leaves in a the bitwise AND of a and %s." % s,
        "Leaves in a the bitwise exclusive OR of a and %s." % s,
        "Leaves in a the bitwise OR of a and %s." % s,
        "Compares %s with a by a subtraction whose result only sets the flags." % s,
    ][a]


def add16(dst, rp):
    return "Adds %s to %s; s, z and p/v keep their values." % (rp.lower(), dst.lower())


def adc16(dst, rp, sign):
    if sign > 0:
        return "Adds %s and the carry flag to %s." % (rp.lower(), dst.lower())
    return "Subtracts %s and the carry flag from %s." % (rp.lower(), dst.lower())


def rotate_a(i):
    return [
        "Rotates a left; bit 7 goes to bit 0 and to the carry flag.",
        "Rotates a right; bit 0 goes to bit 7 and to the carry flag.",
        "Rotates a left through the carry flag: bit 7 to carry, carry to bit 0.",
        "Rotates a right through the carry flag: bit 0 to carry, carry to bit 7.",
    ][i]


def shift(y, reg, copy=None):
    s = thing(reg)
    text = [
        "Rotates %s left; bit 7 goes to bit 0 and to the carry flag" % s,
        "Rotates %s right; bit 0 goes to bit 7 and to the carry flag" % s,
        "Rotates %s left through the carry flag" % s,
        "Rotates %s right through the carry flag" % s,
        "Shifts %s left; bit 7 goes to the carry flag and bit 0 becomes 0" % s,
        "Shifts %s right keeping bit 7; bit 0 goes to the carry flag" % s,
        "Shifts %s left; bit 7 goes to the carry flag and bit 0 becomes 1" % s,
        "Shifts %s right; bit 0 goes to the carry flag and bit 7 becomes 0" % s,
    ][y]
    return text + copied(copy) + "."


def bit(y, reg):
    # The help finds the first row of a mnemonic, which for BIT b,(IX+d) is an
    # undocumented encoding: all of them share one text so that it fits both.
    return "Tests bit %d of %s: the zero flag is set when the bit is 0." % (y, thing(reg))


def set_res(word, y, reg, copy=None):
    verb = "Resets" if word == "RES" else "Sets"
    return "%s bit %d of %s%s." % (verb, y, thing(reg), copied(copy))


def in_c(reg):
    return ("Reads port c into %s and sets the flags from the byte; b gives the high "
            "half of the port address." % reg.lower())


def out_c(reg):
    return "Writes %s to port c; b gives the high half of the port address." % reg.lower()


def im(mode):
    return {
        "0": ("Selects interrupt mode 0: the interrupting device puts an instruction on "
              "the data bus."),
        "1": "Selects interrupt mode 1: an interrupt calls address 38h.",
        "2": ("Selects interrupt mode 2: an interrupt calls the address read from the "
              "table entry that i and the data bus point to."),
        "0/1": ("Selects an interrupt mode that is not defined; it behaves as mode 0 on "
                "most chips."),
    }[mode]


def block(kind, step, repeat):
    way = "increments" if step > 0 else "decrements"
    once = [
        "Copies the byte at the address in hl to the address in de, %s hl and de, "
        "and decrements bc" % way,
        "Compares the byte at the address in hl with a, %s hl and decrements bc" % way,
        "Reads port c into the byte at the address in hl, %s hl and decrements b" % way,
        "Decrements b, writes the byte at the address in hl to port c and %s hl" % way,
    ][kind]
    if not repeat:
        return once + "."
    until = ["bc is zero", "a match is found or bc is zero", "b is zero", "b is zero"][kind]
    return once + ", over and over until %s." % until
