"""The Z80 instruction set as the opcode tables list it.

Every entry is one opcode byte sequence with its mnemonic in Zilog notation.
Operand place-holders in the mnemonic: "nn" a 16-bit word, "n" a byte,
"(PC+e)" a relative jump, "IX+d"/"IY+d" an index displacement. A trailing
"*" marks an undocumented instruction.

The list holds every documented opcode and the well-known undocumented ones:
SLL, the index-register halves, the DDCB/FDCB forms that also copy the result
into a register, and the ED duplicates of NEG, RETN and IM with IN F,(C) and
OUT (C),0. ED 63 and ED 6B are listed without a star: they are LD (nn),HL and
LD HL,(nn) in another encoding. ED 77 and ED 7F do nothing and are left out,
as are the DD/FD codes that merely run the unprefixed instruction.
"""

from dataclasses import dataclass

import z80text as T

R8 = ["B", "C", "D", "E", "H", "L", "(HL)", "A"]
ALU = ["ADD A,", "ADC A,", "SUB ", "SBC A,", "AND ", "XOR ", "OR ", "CP "]
SHIFTS = ["RLC", "RRC", "RL", "RR", "SLA", "SRA", "SLL", "SRL"]
COND = ["NZ", "Z", "NC", "C", "PO", "PE", "P", "M"]
PAIRS = ["BC", "DE", "HL", "SP"]
STACK_PAIRS = ["BC", "DE", "HL", "AF"]

# Flag fields, in the order C, N, P/V, H, Z, S.
NONE = "------"
INC8 = "-0V+++"
DEC8 = "-1V+++"
ADD8 = "+0V+++"
SUB8 = "+1V+++"
AND8 = "00P1++"
OR8 = "00P0++"
ADD16 = "+0-+--"
ROT_A = "+0-0--"
ROT = "+0P0++"
BIT = "-0 1+ "
IN_C = "-0P0++"
SWAP_F = "******"
ALU_FLAGS = [ADD8, ADD8, SUB8, SUB8, AND8, OR8, OR8, SUB8]


@dataclass
class Op:
    code: str  # upper-case hexadecimal, 2, 4 or 6 digits
    mnem: str
    flags: str
    cycles: str
    text: str
    undoc: bool = False

    @property
    def mnemonic(self):
        return self.mnem + ("*" if self.undoc else "")

    @property
    def size(self):
        # Each lower-case letter of a place-holder stands for one operand byte.
        return len(self.code) // 2 + sum(self.mnem.count(c) for c in "ned")


def base():
    ops = {}

    def add(code, mnem, flags, cycles, text):
        ops[code] = Op("%02X" % code, mnem, flags, str(cycles), text)

    add(0x00, "NOP", NONE, 4, T.NOP)
    add(0x08, "EX AF,AF\u2019", SWAP_F, 4, T.EX_AF)
    add(0x10, "DJNZ (PC+e)", NONE, "13/8", T.DJNZ)
    add(0x18, "JR (PC+e)", NONE, 12, T.jr(None))
    for i, cc in enumerate(COND[:4]):
        add(0x20 + 8 * i, "JR %s,(PC+e)" % cc, NONE, "12/7", T.jr(cc))
    for i, rp in enumerate(PAIRS):
        add(0x01 + 16 * i, "LD %s,nn" % rp, NONE, 10, T.ld_pair_imm(rp))
        add(0x09 + 16 * i, "ADD HL,%s" % rp, ADD16, 11, T.add16("HL", rp))
        add(0x03 + 16 * i, "INC %s" % rp, NONE, 6, T.inc16(rp, 1))
        add(0x0B + 16 * i, "DEC %s" % rp, NONE, 6, T.inc16(rp, -1))
    add(0x02, "LD (BC),A", NONE, 7, T.store_a("BC"))
    add(0x12, "LD (DE),A", NONE, 7, T.store_a("DE"))
    add(0x0A, "LD A,(BC)", NONE, 7, T.load_a("BC"))
    add(0x1A, "LD A,(DE)", NONE, 7, T.load_a("DE"))
    add(0x22, "LD (nn),HL", NONE, 16, T.store_word("HL"))
    add(0x2A, "LD HL,(nn)", NONE, 16, T.load_word("HL"))
    add(0x32, "LD (nn),A", NONE, 13, T.STORE_A_NN)
    add(0x3A, "LD A,(nn)", NONE, 13, T.LOAD_A_NN)
    for r, reg in enumerate(R8):
        mem = reg == "(HL)"
        add(0x04 + 8 * r, "INC " + reg, INC8, 11 if mem else 4, T.inc8(reg, 1))
        add(0x05 + 8 * r, "DEC " + reg, DEC8, 11 if mem else 4, T.inc8(reg, -1))
        add(0x06 + 8 * r, "LD %s,n" % reg, NONE, 10 if mem else 7, T.ld8(reg, "n"))
    for i, name in enumerate(["RLCA", "RRCA", "RLA", "RRA"]):
        add(0x07 + 8 * i, name, ROT_A, 4, T.rotate_a(i))
    add(0x27, "DAA", "+-P+++", 4, T.DAA)
    add(0x2F, "CPL", "-1-1--", 4, T.CPL)
    add(0x37, "SCF", "10-0--", 4, T.SCF)
    add(0x3F, "CCF", "+0-+--", 4, T.CCF)
    for d, dst in enumerate(R8):
        for s, src in enumerate(R8):
            code = 0x40 + 8 * d + s
            if code == 0x76:
                add(code, "HALT", NONE, 4, T.HALT)
            else:
                mem = "(HL)" in (dst, src)
                add(code, "LD %s,%s" % (dst, src), NONE, 7 if mem else 4, T.ld8(dst, src))
    for a, op in enumerate(ALU):
        for s, src in enumerate(R8):
            add(0x80 + 8 * a + s, op + src, ALU_FLAGS[a], 7 if s == 6 else 4, T.alu(a, src))
        add(0xC6 + 8 * a, op + "n", ALU_FLAGS[a], 7, T.alu(a, "n"))
    for i, cc in enumerate(COND):
        add(0xC0 + 8 * i, "RET " + cc, NONE, "11/5", T.ret(cc))
        add(0xC2 + 8 * i, "JP %s,nn" % cc, NONE, 10, T.jp(cc))
        add(0xC4 + 8 * i, "CALL %s,nn" % cc, NONE, "17/10", T.call(cc))
        add(0xC7 + 8 * i, "RST %XH" % (8 * i), NONE, 11, T.rst(8 * i))
    for i, rp in enumerate(STACK_PAIRS):
        flags = SWAP_F if rp == "AF" else NONE
        add(0xC1 + 16 * i, "POP " + rp, flags, 10, T.pop(rp))
        add(0xC5 + 16 * i, "PUSH " + rp, NONE, 11, T.push(rp))
    add(0xC3, "JP nn", NONE, 10, T.jp(None))
    add(0xC9, "RET", NONE, 10, T.ret(None))
    add(0xCD, "CALL nn", NONE, 17, T.call(None))
    add(0xD3, "OUT (n),A", NONE, 11, T.OUT_N)
    add(0xD9, "EXX", NONE, 4, T.EXX)
    add(0xDB, "IN A,(n)", NONE, 11, T.IN_N)
    add(0xE3, "EX (SP),HL", NONE, 19, T.ex_sp("HL"))
    add(0xE9, "JP (HL)", NONE, 4, T.jp_reg("HL"))
    add(0xEB, "EX DE,HL", NONE, 4, T.EX_DE)
    add(0xF3, "DI", NONE, 4, T.DI)
    add(0xF9, "LD SP,HL", NONE, 6, T.ld_sp("HL"))
    add(0xFB, "EI", NONE, 4, T.EI)
    assert len(ops) == 252
    return [ops[k] for k in sorted(ops)]


def cb():
    ops = []
    for code in range(256):
        reg = R8[code & 7]
        mem = reg == "(HL)"
        group, y = code >> 6, (code >> 3) & 7
        if group == 0:
            op = Op("CB%02X" % code, "%s %s" % (SHIFTS[y], reg), ROT, "15" if mem else "8",
                    T.shift(y, reg), undoc=(y == 6))
        elif group == 1:
            op = Op("CB%02X" % code, "BIT %d,%s" % (y, reg), BIT, "12" if mem else "8",
                    T.bit(y, reg))
        else:
            word = "RES" if group == 2 else "SET"
            op = Op("CB%02X" % code, "%s %d,%s" % (word, y, reg), NONE, "15" if mem else "8",
                    T.set_res(word, y, reg))
        ops.append(op)
    return ops


def ed():
    ops = {}

    def add(code, mnem, flags, cycles, text, undoc=False):
        ops[code] = Op("ED%02X" % code, mnem, flags, str(cycles), text, undoc)

    for r, reg in enumerate(R8):
        if reg == "(HL)":
            add(0x70, "IN F,(C)", IN_C, 12, T.IN_F, undoc=True)
            add(0x71, "OUT (C),0", NONE, 12, T.OUT_0, undoc=True)
            continue
        add(0x40 + 8 * r, "IN %s,(C)" % reg, IN_C, 12, T.in_c(reg))
        add(0x41 + 8 * r, "OUT (C),%s" % reg, NONE, 12, T.out_c(reg))
    for i, rp in enumerate(PAIRS):
        add(0x42 + 16 * i, "SBC HL," + rp, SUB8, 15, T.adc16("HL", rp, -1))
        add(0x4A + 16 * i, "ADC HL," + rp, ADD8, 15, T.adc16("HL", rp, 1))
        add(0x43 + 16 * i, "LD (nn),%s" % rp, NONE, 20, T.store_word(rp))
        add(0x4B + 16 * i, "LD %s,(nn)" % rp, NONE, 20, T.load_word(rp))
    add(0x44, "NEG", SUB8, 8, T.NEG)
    for i in range(1, 8):
        add(0x44 + 8 * i, "NEG", SUB8, 8, T.duplicate("neg", T.NEG), undoc=True)
    add(0x45, "RETN", NONE, 14, T.RETN)
    add(0x4D, "RETI", NONE, 14, T.RETI)
    for i in range(2, 8):
        add(0x45 + 8 * i, "RETN", NONE, 14, T.duplicate("retn", T.RETN), undoc=True)
    for i, mode in enumerate(["0", "0/1", "1", "2", "0", "0/1", "1", "2"]):
        text = T.im(mode)
        if i > 3 and mode != "0/1":
            text = T.duplicate("im " + mode, text)
        add(0x46 + 8 * i, "IM " + mode, NONE, 8, text, undoc=i in (1, 4, 5, 6, 7))
    add(0x47, "LD I,A", NONE, 9, T.LD_I_A)
    add(0x4F, "LD R,A", NONE, 9, T.LD_R_A)
    add(0x57, "LD A,I", "-0*0++", 9, T.LD_A_I)
    add(0x5F, "LD A,R", "-0*0++", 9, T.LD_A_R)
    add(0x67, "RRD", IN_C, 18, T.RRD)
    add(0x6F, "RLD", IN_C, 18, T.RLD)
    blocks = [("LDI", "LDD", "LDIR", "LDDR", "-0*0--", "-000--"),
              ("CPI", "CPD", "CPIR", "CPDR", "-1*+++", "-1*+++"),
              ("INI", "IND", "INIR", "INDR", "-1  + ", "-1  1 "),
              ("OUTI", "OUTD", "OTIR", "OTDR", "-1  + ", "-1  1 ")]
    for k, (inc, dec, incr, decr, once, rep) in enumerate(blocks):
        add(0xA0 + k, inc, once, 16, T.block(k, 1, False))
        add(0xA8 + k, dec, once, 16, T.block(k, -1, False))
        add(0xB0 + k, incr, rep, "21/16", T.block(k, 1, True))
        add(0xB8 + k, decr, rep, "21/16", T.block(k, -1, True))
    assert len(ops) == 78
    return [ops[k] for k in sorted(ops)]


def index(prefix, ix):
    """The DD (IX) or FD (IY) group."""
    ops = {}
    hi, lo, mem = ix + "H", ix + "L", "(%s+d)" % ix

    def add(code, mnem, flags, cycles, text, undoc=False):
        ops[code] = Op("%s%02X" % (prefix, code), mnem, flags, str(cycles), text, undoc)

    for i, rp in enumerate(["BC", "DE", ix, "SP"]):
        add(0x09 + 16 * i, "ADD %s,%s" % (ix, rp), ADD16, 15, T.add16(ix, rp))
    add(0x21, "LD %s,nn" % ix, NONE, 14, T.ld_pair_imm(ix))
    add(0x22, "LD (nn),%s" % ix, NONE, 20, T.store_word(ix))
    add(0x2A, "LD %s,(nn)" % ix, NONE, 20, T.load_word(ix))
    add(0x23, "INC " + ix, NONE, 10, T.inc16(ix, 1))
    add(0x2B, "DEC " + ix, NONE, 10, T.inc16(ix, -1))
    for r, half in [(4, hi), (5, lo)]:
        add(0x04 + 8 * r, "INC " + half, INC8, 8, T.inc8(half, 1), undoc=True)
        add(0x05 + 8 * r, "DEC " + half, DEC8, 8, T.inc8(half, -1), undoc=True)
        add(0x06 + 8 * r, "LD %s,n" % half, NONE, 11, T.ld8(half, "n"), undoc=True)
    add(0x34, "INC " + mem, INC8, 23, T.inc8(mem, 1))
    add(0x35, "DEC " + mem, DEC8, 23, T.inc8(mem, -1))
    add(0x36, "LD %s,n" % mem, NONE, 19, T.ld8(mem, "n"))
    halves = ["B", "C", "D", "E", hi, lo, mem, "A"]
    for d in range(8):
        for s in range(8):
            code = 0x40 + 8 * d + s
            if code == 0x76:
                continue
            if s == 6:
                add(code, "LD %s,%s" % (R8[d], mem), NONE, 19, T.ld8(R8[d], mem))
            elif d == 6:
                add(code, "LD %s,%s" % (mem, R8[s]), NONE, 19, T.ld8(mem, R8[s]))
            elif d in (4, 5) or s in (4, 5):
                dst, src = halves[d], halves[s]
                add(code, "LD %s,%s" % (dst, src), NONE, 8, T.ld8(dst, src), undoc=True)
    for a, op in enumerate(ALU):
        add(0x84 + 8 * a, op + hi, ALU_FLAGS[a], 8, T.alu(a, hi), undoc=True)
        add(0x85 + 8 * a, op + lo, ALU_FLAGS[a], 8, T.alu(a, lo), undoc=True)
        add(0x86 + 8 * a, op + mem, ALU_FLAGS[a], 19, T.alu(a, mem))
    add(0xE1, "POP " + ix, NONE, 14, T.pop(ix))
    add(0xE5, "PUSH " + ix, NONE, 15, T.push(ix))
    add(0xE3, "EX (SP),%s" % ix, NONE, 23, T.ex_sp(ix))
    add(0xE9, "JP (%s)" % ix, NONE, 8, T.jp_reg(ix))
    add(0xF9, "LD SP,%s" % ix, NONE, 10, T.ld_sp(ix))
    assert len(ops) == 85
    return [ops[k] for k in sorted(ops)]


def index_cb(prefix, ix):
    """The DDCB or FDCB group: the displacement stands before the last byte."""
    ops = []
    mem = "(%s+d)" % ix
    for code in range(256):
        r, group, y = code & 7, code >> 6, (code >> 3) & 7
        copy = R8[r] if r != 6 else None
        if group == 0:
            mnem, flags, cycles = "%s %s" % (SHIFTS[y], mem), ROT, "23"
            text = T.shift(y, mem, copy)
            undoc = copy is not None or y == 6
        elif group == 1:
            mnem, flags, cycles = "BIT %d,%s" % (y, mem), BIT, "20"
            text, undoc = T.bit(y, mem), copy is not None
        else:
            word = "RES" if group == 2 else "SET"
            mnem, flags, cycles = "%s %d,%s" % (word, y, mem), NONE, "23"
            text, undoc = T.set_res(word, y, mem, copy), copy is not None
        if copy and group != 1:
            mnem = "LD %s,%s" % (copy, mnem)
        ops.append(Op("%sCB%02X" % (prefix, code), mnem, flags, cycles, text, undoc))
    return ops


PREFIXES = ["CB", "ED", "DD", "FD", "DDCB", "FDCB"]


def instructions():
    """Every instruction row in table order: plain, CB, ED, DD, FD, DDCB, FDCB."""
    return (base() + cb() + ed() + index("DD", "IX") + index("FD", "IY") +
            index_cb("DD", "IX") + index_cb("FD", "IY"))
