// File, directory and line services: reading lines, UTF-16 files, writing arrays of lines,
// directories, memory files, and the lines of a text.
#include "services/arrays.hpp"
#include "soporte.hpp"

#include <zarnxml/zarnbase.h>
#include <zarnxml/zarndir.h>
#include <zarnxml/zarnfile.h>
#include <zarnxml/zarnio.h>
#include <zarnxml/zarntxt.h>
#include <zarnxml/zarnvec.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace fs = std::filesystem;

using Lineas = std::vector<std::string>;

// data/lineas.txt: lines read from a file, the lines of a text, lines joined, lines written to a
// file that each row finds as the row before left it.
TEST(Lineas, DeFicherosYTextosYUnion) {
    DirTemporal d;
    const auto une = [](const auto &lineas) {
        std::string r;
        for (const auto &l : lineas)
            r += u8(l.c_str()) + ";";
        return r;
    };
    for (const auto &f : tabla("lineas.txt")) {
        std::string r;
        if (f[0].starts_with("lee")) {
            escribe_fichero(d / "l.txt", f[1]);
            r = une(lineas_ztxt(d / "l.txt", f[0] == "lee4" ? 4 : ZTXT_MAX_LINEA));
        } else if (f[0] == "texto")
            r = une(elementos(cad_obten_lista_lineas(f[1].c_str())));
        else if (f[0] == "texto_u")
            r = une(elementos(cad_obten_lista_lineas_u(zarn::utf8_a_utf16(f[1]).c_str())));
        else if (f[0] == "es_unicode" || f[0] == "unicode") {
            escribe_fichero(d / "u.txt", f[1]);
            r = f[0] == "unicode"
                    ? une(elementos(lc_LeeFicheroTxt_unicode(d.u("u.txt").c_str())))
                    : std::to_string(zarnfile_es_fichero_unicode(d.u("u.txt").c_str()));
        } else {
            ArrCADENA a = arr_CreaCADENA(0);
            for (size_t i = 0, j; (j = f[1].find(';', i)) != std::string::npos; i = j + 1)
                arr_AppendCADENA(a, f[1].substr(i, j - i).c_str());
            if (f[0] == "une")
                r = toma(arraystr_union_de_textos_separados_por_salto_de_linea(a));
            else if (f[0] == "graba")
                lc_Graba_Array_FicheroTxt_u(a, d.u("s.xml").c_str());
            else
                lc_Anade_Array_FicheroTxt_u(a, d.u("s.xml").c_str());
            if (f[0] != "une")
                r = lee_fichero(d / "s.xml");
            arr_DestruyeCADENA(&a);
        }
        EXPECT_EQ(r, f[2]) << f[0] << " " << f[1];
    }
}

// A line is terminated behind its last byte, NUL bytes passed as they are; block reads after
// line reads continue where the lines stopped; the size does not move the position; a short
// read zeroes the rest.
TEST(Fichero, BytesNulosBloquesTrasLineasTamanyoFallosYUnicode) {
    DirTemporal d;
    escribe_fichero(d / "b.txt", std::string("u\0o\ndos\r\ntres", 13));
    zarnio_fichero_t *f = f_lc_fopen_u(d.u("b.txt").c_str(), u"rt", "test", 1);
    char linea[8] = "xxxxxxx";
    ASSERT_EQ(ztxt_lee_linea(f, linea, 7), linea);
    EXPECT_EQ(std::string(linea, 5), std::string("u\0o\0x", 5));
    EXPECT_EQ(lc_tamanyo_fichero(f), 13.0);
    char bloque[12];
    std::memset(bloque, 'x', sizeof bloque);
    f_lc_fread_sin_error(bloque, 4, 3, f);
    EXPECT_EQ(std::string(bloque, 12), std::string("dos\r\ntres\0\0\0", 12));
    lc_fclose(&f);

    // A memory file takes its buffer; destroying a null variable does nothing.
    auto *buffer = static_cast<uint8_t *>(std::malloc(3));
    fichmem *fm = fichmem_crea_original(&buffer, 3);
    EXPECT_EQ(buffer, nullptr);
    fichmem_destruye(&fm);
    fichmem_destruye(&fm);

    // A file that does not open names its path in UTF-8; a write that fails is "fichero escrito".
    escribe_fichero(d / "fichero", "x");
    ArrCADENA a = arr_CreaCADENA(0);
    arr_AppendCADENA(a, "x");
    const auto falla = [](const fs::path &p, const char *condicion, auto &&abre) {
        const ErrorInterno e = error_de([&] { abre(p.u16string().c_str()); });
        EXPECT_EQ(e.condicion, condicion);
        EXPECT_EQ(e.mensaje, p.string());
    };
    const char *abierto = "fichero abierto", *escrito = "fichero escrito";
    using R = const char16_t *;
    falla(d / "nó está.txt", abierto, [](R r) { f_lc_fopen_u(r, u"rb", "test", 7); });
    falla(d / "nó está.txt", abierto, [](R r) { elementos(lc_LeeFicheroTxt_unicode(r)); });
    falla(d.ruta, abierto, [](R r) { f_lc_fopen_u(r, u"rt", "test", 7); });
    falla(d / "no/hay/f.txt", abierto, [&](R r) { lc_Graba_Array_FicheroTxt_u(a, r); });
    falla(d / "fichero/f.xml", abierto, [](R r) { zdir_crea_directorios_fichero_UNICODE(r); });
    // The directories that lead to a file, made twice: the second time there is nothing to do.
    for (int i = 0; i < 2; ++i)
        zdir_crea_directorios_fichero_UNICODE(d.u("a/b/c/f.xml").c_str());
    EXPECT_TRUE(fs::is_directory(d / "a/b/c"));
    EXPECT_FALSE(fs::exists(d / "a/b/c/f.xml"));
    if (fs::exists("/dev/full")) {
        falla("/dev/full", escrito, [&](R r) { lc_Anade_Array_FicheroTxt_u(a, r); });
        zarnio_fichero_t *f = f_lc_fopen_u(u"/dev/full", u"wb", "test", 1);
        ztxt_escr_string_sin_salto_de_linea("datos", f);
        falla("/dev/full", escrito, [&](R) { lc_fclose_al_final(&f); });
        EXPECT_EQ(f, nullptr);
    }
    if (fs::exists("/proc/self/mem")) { // it opens, and its first page does not read
        zarnio_fichero_t *f = f_lc_fopen_u(u"/proc/self/mem", u"rb", "test", 1);
        char b[8];
        f_lc_fread_sin_error(b, 8, 0, f); // nothing asked, nothing read
        falla("/proc/self/mem", abierto, [&](R) { f_lc_fread_sin_error(b, 1, sizeof b, f); });
        lc_fclose(&f);
    }
    arr_DestruyeCADENA(&a);

    // UTF-16 files: the lines of a long one, the mark.
    const auto lee = [&](const std::string &bytes) {
        escribe_fichero(d / "u.txt", bytes);
        return elementos(lc_LeeFicheroTxt_unicode(d.u("u.txt").c_str()));
    };
    // A long file, read into UTF-8 lines block by block, gives the lines of the file read whole:
    // a surrogate pair cut by the end of a block (one of the two shifts cuts one wherever the
    // blocks end), a lone surrogate at a line end and at the end, an odd last byte, either order.
    std::u16string largo;
    for (int i = 1; i < 150000; ++i)
        largo += i % 2000 ? u"\U0001F600" : u"\r\n\xD800x\xDC00\n";
    largo += u"\xD83D";
    for (const std::u16string &t : {largo, u"a" + largo})
        for (const bool grande : {false, true})
            for (const char *impar : {"", "z"}) {
                Lineas esperadas;
                for (const std::u16string &l :
                     lee((grande ? "\xFE\xFF" : "\xFF\xFE") + utf16_bytes(t, grande) + impar))
                    esperadas.push_back(zarn::utf16_a_utf8(l));
                EXPECT_EQ(elementos(zarnfxml_lee_lineas_fichero(d.u("u.txt").c_str())), esperadas);
            }

    // Only the mark makes a file Unicode (more in data/lineas.txt).
    EXPECT_EQ(zarnfile_es_fichero_unicode(d.u("no está").c_str()), FALSO);
    EXPECT_EQ(zarnfile_es_fichero_unicode(d.ruta.u16string().c_str()), FALSO);
}

// Many short lines and lines longer than any internal block come out unchanged and in order; a
// line ending in '\r' gets "\r\n". Read back, the 6 MB line comes in two pieces and the short
// lines cross the read blocks intact.
TEST(Escritura, SalidaGrandeYLineaLarga) {
    DirTemporal d;
    std::string larga(6'000'000, ' '), esperado;
    for (size_t i = 0; i < larga.size(); ++i)
        larga[i] = static_cast<char>('a' + i % 26);
    ArrCADENA a = arr_CreaCADENA(0);
    arr_AppendCADENA(a, larga.c_str());
    Lineas leidas{larga.substr(0, 5'120'000), larga.substr(5'120'000)};
    for (int i = 0; i < 50'000; ++i) {
        const std::string linea = i % 5000 == 1
                                      ? std::string(300'000 + size_t(i), char('a' + i % 26))
                                      : std::string(size_t(i % 97), char('!' + i % 90));
        arr_AppendCADENA(a, (linea + (i % 2 ? "\r" : "")).c_str());
        leidas.push_back(linea);
        esperado += linea + (i % 2 ? "\r\n" : "\n");
    }
    lc_Graba_Array_FicheroTxt_u(a, d.u("g.xml").c_str());
    arr_DestruyeCADENA(&a);
    EXPECT_TRUE(lee_fichero(d / "g.xml") == larga + "\n" + esperado);
    EXPECT_TRUE(lineas_ztxt(d / "g.xml") == leidas);
}
