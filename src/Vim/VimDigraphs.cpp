// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimDigraphs.h"

#include "Vim/VimKey.h"
#include "Vim/VimKeyNotation.h"
#include "Vim/VimKeys.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

/// Characters that follow each other, from `first` on: two letters each, or two blanks for one that cannot be typed so.
struct Run {
    char16_t first;
    std::u16string_view letters;
};

// clang-format off
constexpr auto runs = std::to_array<Run>({
    {0x0000, u"NUSHSXEXETEQAKBLBSHTLFVTFFCRSOSIDLD1D2D3D4NKSYEBCNEMSBECFSGSRSUSSP    NbDO"},
    {0x0040, u"At"},
    {0x005B, u"<(//)>'>  '!"},
    {0x007B, u"(!!!!)'?DTPAHOBHNHINNLSAESHSHJVSPDPURIS2S3DCP1P2TSCCMWSGEGSSGCSCCISTOCPMACNS!ICtPdCuYeBBSE':Co-a<<NO--Rg"
     u"'mDG+-2S3S''MyPI.M',1S-o>>141234?IA!A'A>A?A:AAAEC,E!E'E>E:I!I'I>I:D-N?O!O'O>O?O:*XO/U!U'U>U:Y'THssa!a'a>"
     u"a?a:aaaec,e!e'e>e:i!i'i>i:d-n?o!o'o>o?o:-:o/u!u'u>u:y'thy:A-a-A(a(A;a;C'c'C>c>C.c.C<c<D<d<D/d/E-e-E(e(E."
     u"e.E;e;E<e<G>g>G(g(G.g.G,g,H>h>H/h/I?i?I-i-I(i(I;i;I.i.IJijJ>j>K,k,kkL'l'L,l,L<l<L.l.L/l/N'n'N,n,N<n<'nNG"
     u"ngO-o-O(o(O\"o\"OEoeR'r'R,r,R<r<S's'S>s>S,s,S<s<T,t,T<t<T/t/U?u?U-u-U(u(U0u0U\"u\"U;u;W>w>Y>y>Y:Z'z'Z.z.Z<z<"},
    {0x00A1, u"~!c|$$oxY-||    cO    -,    -=~o  2233    pp~.  11          ~?A`  A^A~A\"A@    E`  E^E\"I`  I^I\"  N~O`  O^"
     u"O~  /\\  U`  U^    Ip  a`  a^a~a\"a@    e`  e^e\"i`  i^    n~o`  o^o~      u`  u^      y\""},
    {0x01A0, u"O9o9OIoi    yr"},
    {0x01AF, u"U9u9        Z/z/ED"},
    {0x01CD, u"A<a<I<i<O<o<U<u<"},
    {0x01DE, u"A1a1A7a7A3a3G/g/G<g<K<k<O;o;O1o1EZezj<      G'g'"},
    {0x02BF, u";S"},
    {0x02C7, u"'<"},
    {0x02D8, u"'('.'0';  '\""},
    {0x0386, u"A%  E%Y%I%  O%  U%W%i3A*B*G*D*E*Z*Y*H*I*K*L*M*N*C*O*P*R*  S*T*U*F*X*Q*W*J*V*a%e%y%i%u3a*b*g*d*e*z*y*h*i*"
     u"k*l*m*n*c*o*p*r**ss*t*u*f*x*q*w*j*v*o%u%w%"},
    {0x03D8, u"'G,GT3t3M3m3K3k3P3p3"},
    {0x03F4, u"'%j3"},
    {0x0401, u"IOD%G%IEDSIIYIJ%LJNJTsKJ  V%DZA=B=V=G=D=E=Z%Z=I=J=K=L=M=N=O=P=R=S=T=U=F=H=C=C%S%Sc=\"Y=%\"JEJUJAa=b=v=g=d="
     u"e=z%z=i=j=k=l=m=n=o=p=r=s=t=u=f=h=c=c%s%sc='y=%'jejuja  iod%g%iedsiiyij%ljnjtskj  v%dz    Y3y3          "
     u"  O3o3            F3f3V3v3"},
    {0x0480, u"C3c3"},
    {0x0490, u"G3g3"},
    {0x05D0, u"A+B+G+D+H+W+Z+X+TjJ+K%K+L+M%M+N%N+S+E+P%P+ZjZJQ+R+ShT+"},
    {0x060C, u",+"},
    {0x061B, u";+      ?+  H'aMaHwHahyHa+b+tmt+tkg+hkx+d+dkr+z+s+snc+ddtjzHe+i+          ++f+q+k+l+m+n+h+w+j+y+:+\"+=+/+"
     u"'+1+3+0+"},
    {0x0670, u"aS"},
    {0x067E, u"p+"},
    {0x06A4, u"v+"},
    {0x06AF, u"gf"},
    {0x06F0, u"0a1a2a3a4a5a6a7a8a9a"},
    {0x1E02, u"B.b.    B_b_    D.d.    D_d_D,d,"},
    {0x1E1E, u"F.f.G-g-H.h.    H:h:H,h,            K'k'    K_k_        L_l_    M'm'M.m.    N.n.    N_n_"},
    {0x1E54, u"P'p'P.p.R.r.        R_r_S.s."},
    {0x1E6A, u"T.t.    T_t_"},
    {0x1E7C, u"V?v?    W!w!W'w'W:w:W.w."},
    {0x1E80, u"W`w`"},
    {0x1E8A, u"X.x.X:x:Y.y.Z>z>    Z_z_h_t:w0y0"},
    {0x1EA2, u"A2a2"},
    {0x1EBA, u"E2e2E?e?"},
    {0x1EC8, u"I2i2        O2o2"},
    {0x1EE6, u"U2u2"},
    {0x1EF2, u"Y!y!"},
    {0x1EF2, u"Y`y`    Y2y2Y?y?            ;',';!,!?;?,!:?:"},
    {0x2002, u"1N1M3M4M6M    1T1H          -1    -N-M-3!2=2'6'9.99'\"6\"9:99\"/-/=oo    ..,."},
    {0x2030, u"%0  1'2'3'1\"2\"3\"Ca<1>1:X    '-          /f"},
    {0x2070, u"0S      4S5S6S7S8S9S+S-S=S(S)SnS0s1s2s3s4s5s6s7s8s9s+s-s=s(s)s"},
    {0x20A4, u"Li    Pt  W=    Eu"},
    {0x20AC, u"=e"},
    {0x20BD, u"=R"},
    {0x20BD, u"=P"},
    {0x2103, u"oC  co      oF"},
    {0x2116, u"N0PO            Rx  SM  TM      Om        AO"},
    {0x2153, u"132315253545165618385878  1R2R3R4R5R6R7R8R9RaRbRcR        1r2r3r4r5r6r7r8r9rarbrcr"},
    {0x2190, u"<--!->-v<>UD"},
    {0x21D0, u"<=  =>  =="},
    {0x2200, u"FA  dPTE  /0DENB(-    -)      *P  +Z-2-+      *-ObSbRT    0(00-L-V        PP  ANOR(U)UInDI  Io          "
     u".::.:R::        ?1  CG        ?-  ?=    ?2      =?            HI"},
    {0x2260, u"!==3    =<>=        <**>    !<!>"},
    {0x2282, u"(C)C    (_)_"},
    {0x2299, u"0.02"},
    {0x22A5, u"-T"},
    {0x22C5, u".P"},
    {0x22EE, u":3.3"},
    {0x2302, u"Eh          <7>77<7>        NI  (A    TR"},
    {0x2320, u"IuIl"},
    {0x2329, u"<//>"},
    {0x2423, u"Vs"},
    {0x2440, u"1h3h2h4h    1j2j3j4j"},
    {0x2488, u"1.2.3.4.5.6.7.8.9."},
    {0x2500, u"hhHHvvVV3-3_3!3/4-4_4!4/drdRDrDRdldLDlLDuruRUrURuluLUlULvrvR    Vr    VRvlvL    Vl    VLdh    dHDh    DH"
     u"uh    uHUh    UHvh    vH    Vh"},
    {0x254B, u"VH"},
    {0x2571, u"FDBD"},
    {0x2580, u"TB      LB      FB      lB      RB.S:S?S"},
    {0x25A0, u"fSOSRORrRFRYRHRZRKRXsB  SROr        UTuT    PRTr        DtdT    PLTl        DbDw    LZ0m    0o0M0L0R    "
     u"        SnIc"},
    {0x25E2, u"FdBd"},
    {0x2605, u"*2*1"},
    {0x261C, u"<H  >H"},
    {0x263A, u"0u0USU      Fm  Ml"},
    {0x2660, u"cScHcDcC          MdM8M2  MbMxMX"},
    {0x2713, u"OK      XX"},
    {0x2720, u"-X"},
    {0x3000, u"IS,_._+\"+_*_;_0_    <+>+<'>'<\">\"(\")\"=T=_(')'(I)I        -?"},
    {0x3041, u"A5a5I5i5U5u5E5e5O5o5kagakigikugukegekogosazasizisuzusezesozotadatiditUtudutedetodonaninunenohabapahibipi"
     u"hubupuhebepehobopomamimumemoyAyayUyuyOyorarirurerowAwawiwewon5vu            \"505*5+5    a6A6i6I6u6U6e6E6"
     u"o6O6KaGaKiGiKuGuKeGeKoGoSaZaSiZiSuZuSeZeSoZoTaDaTiDiTUTuDuTeDeToDoNaNiNuNeNoHaBaPaHiBiPiHuBuPuHeBePeHoBo"
     u"PoMaMiMuMeMoYAYaYUYuYOYoRaRiRuReRoWAWaWiWeWoN6VuKAKEVaViVeVo.6-6*6+6            b4p4m4f4d4t4n4l4g4k4h4j4"
     u"q4x4zhchshr4z4c4s4a4o4e4  aieiauouanenaNeNeri4u4iuv4nGgn"},
    {0x3220, u"1c2c3c4c5c6c7c8c9c"},
    {0xFB00, u"fffifl    ftst"},
});
// clang-format on

bool isNamed(QStringView key)
{
    const char16_t unit = key.front().unicode();
    return unit == VimKey::backspace || VimKey::isNamed(unit) || (unit >= VimKeys::alt && unit < VimKey::withAlt(0x80));
}

} // namespace

namespace VimDigraphs {

std::vector<Digraph> all()
{
    std::vector<Digraph> digraphs;
    for (const Run &run : runs) {
        for (size_t at = 0; at + 1 < run.letters.size(); at += 2) {
            if (run.letters[at] != u' ' || run.letters[at + 1] != u' ') {
                digraphs.push_back({run.letters[at], run.letters[at + 1], char16_t(run.first + at / 2)});
            }
        }
    }
    std::ranges::stable_sort(digraphs, {}, &Digraph::character);
    return digraphs;
}

char32_t character(char32_t first, char32_t second)
{
    static const std::vector<Digraph> known = all();
    const auto find = [](char32_t one, char32_t other) -> std::optional<char32_t> {
        const auto found = std::ranges::find_if(known, [&](const Digraph &row) { return row.first == one && row.second == other; });
        return found == known.end() ? std::nullopt : std::optional<char32_t>(found->character);
    };
    if (const auto found = find(first, second)) {
        return *found;
    }
    if (const auto found = find(second, first)) {
        return *found;
    }
    const char32_t beside = first == U' ' ? second : second == U' ' ? first : U'\0';
    constexpr char32_t highestBit = 0x80;
    return beside != 0 && beside < highestBit ? beside | highestBit : second;
}

} // namespace VimDigraphs

std::optional<QString> VimDigraph::take(QStringView key)
{
    if (key.isEmpty()) {
        return std::nullopt;
    }
    if (isNamed(key)) {
        return VimKeyNotation::written(key);
    }
    const char32_t typed = key.toUcs4().front();
    if (!m_first) {
        m_first = typed;
        return std::nullopt;
    }
    const char32_t meant = VimDigraphs::character(*m_first, typed);
    const char32_t put = meant == U'\n' ? U'\0' : meant; // in a line a line feed is none
    return QString::fromUcs4(&put, 1);
}
