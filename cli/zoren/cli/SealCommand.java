package zoren.cli;

import java.io.IOException;
import java.io.InputStream;
import java.io.PrintWriter;
import java.nio.ByteBuffer;
import java.nio.charset.CharacterCodingException;
import java.nio.charset.Charset;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.attribute.PosixFilePermission;
import java.nio.file.attribute.PosixFilePermissions;
import java.security.GeneralSecurityException;
import java.util.Set;
import java.util.concurrent.Callable;
import javax.crypto.Cipher;
import javax.crypto.spec.IvParameterSpec;
import javax.crypto.spec.SecretKeySpec;
import picocli.CommandLine.Command;
import picocli.CommandLine.ITypeConverter;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;
import picocli.CommandLine.Spec;
import picocli.CommandLine.TypeConversionException;

@Command(
        name = "seal",
        header = "Encrypt a text as a configuration file.",
        description = {
            "",
            "\"zoren config\" gives the text back unchanged. It must be UTF-8 without a zero byte,"
                    + " and the sealed file at most 16 MiB. An empty text is sealed too.",
            "",
            "Folders on the way to OUTPUT are made when missing. A new OUTPUT is for its owner's"
                    + " eyes only; one that is replaced keeps its owner and permissions, unless"
                    + " --mode says otherwise. A symbolic link of another user is not followed.",
            ""
        },
        footer = {
            "",
            "Example:",
            "  zoren seal config.xml phone/system/etc/jpsp",
            "  zoren config --device-root phone"
        })
final class SealCommand implements Callable<Integer> {
    // The reader's built-in key, which is its initialisation vector as well.
    private static final String KEY = "Qx7@Lumatrix2049";
    static final int MAX_SEALED_BYTES = 16 << 20;
    // Strings come from native code in modified UTF-8: a character beyond U+FFFF is a pair of
    // surrogates of three bytes each. Without zero characters that is CESU-8.
    private static final Charset MODIFIED_UTF_8 = Charset.forName("CESU-8");

    @Spec private CommandSpec spec;

    @Parameters(
            index = "0",
            paramLabel = "XML",
            description = "The text to encrypt; - is standard input.")
    private Path input;

    @Parameters(index = "1", paramLabel = "OUTPUT", description = "The file to write; - is standard output.")
    private Path output;

    @Option(
            names = {"-m", "--mode"},
            paramLabel = "MODE",
            converter = ModeConverter.class,
            description = "Who may use OUTPUT, three octal digits as of chmod, such as 640.")
    private Set<PosixFilePermission> mode;

    @Override
    public Integer call() throws Failure, IOException {
        final String text = read();
        if (text.indexOf('\0') >= 0) {
            throw new Failure(input, "holds a zero byte, at which the configuration would end");
        }
        final byte[] sealed = encrypt(text.getBytes(MODIFIED_UTF_8));
        if (sealed.length > MAX_SEALED_BYTES) {
            throw new Failure(input, "is too large: sealed it would exceed 16 MiB");
        }
        if (output.toString().equals(Source.STANDARD)) {
            System.out.write(sealed);
            if (System.out.checkError()) {
                throw new Failure("standard output cannot be written");
            }
            return 0;
        }
        if (output.getParent() != null) {
            WholeFile.makeFolder(output.getParent());
        }
        final String remark =
                WholeFile.write(
                        output,
                        mode == null ? WholeFile.OWNER_ONLY : mode,
                        mode != null,
                        out -> out.write(sealed));
        final PrintWriter err = spec.commandLine().getErr();
        if (remark != null) {
            Zoren.report(err, remark);
        }
        final Set<PosixFilePermission> given = Files.getPosixFilePermissions(output);
        if (mode == null && !WholeFile.OWNER_ONLY.containsAll(given)) {
            Zoren.report(
                    err,
                    Names.shown(output) + ": keeps the permissions it had, "
                            + PosixFilePermissions.toString(given));
        }
        return 0;
    }

    private String read() throws Failure {
        try {
            final boolean standard = input.toString().equals(Source.STANDARD);
            if (!standard && Files.exists(output) && Files.isSameFile(input, output)) {
                throw new Failure(output, "is the text itself; name another file");
            }
            try (InputStream in = standard ? System.in : Files.newInputStream(input)) {
                final byte[] bytes = in.readNBytes(MAX_SEALED_BYTES + 1);
                if (bytes.length > MAX_SEALED_BYTES) {
                    throw new Failure(input, "is too large: sealed it would exceed 16 MiB");
                }
                return StandardCharsets.UTF_8
                        .newDecoder()
                        .decode(ByteBuffer.wrap(bytes))
                        .toString();
            }
        } catch (CharacterCodingException e) {
            throw new Failure(input, "is not UTF-8");
        } catch (IOException e) {
            throw new Failure(input, e);
        }
    }

    private static final class ModeConverter
            implements ITypeConverter<Set<PosixFilePermission>> {
        @Override
        public Set<PosixFilePermission> convert(String text) {
            if (!text.matches("[0-7]{3}")) {
                throw new TypeConversionException("'" + text + "' is not three octal digits");
            }
            final StringBuilder letters = new StringBuilder();
            for (int bit = 8; bit >= 0; --bit) {
                final boolean set = (Integer.parseInt(text, 8) >> bit & 1) == 1;
                letters.append(set ? "xwr".charAt(bit % 3) : '-');
            }
            return PosixFilePermissions.fromString(letters.toString());
        }
    }

    private static byte[] encrypt(byte[] text) {
        final byte[] key = KEY.getBytes(StandardCharsets.US_ASCII);
        try {
            final Cipher cipher = Cipher.getInstance("AES/CBC/PKCS5Padding"); // PKCS#7 for AES
            cipher.init(
                    Cipher.ENCRYPT_MODE, new SecretKeySpec(key, "AES"), new IvParameterSpec(key));
            return cipher.doFinal(text);
        } catch (GeneralSecurityException e) {
            throw new IllegalStateException(e); // every Java platform has this cipher
        }
    }
}
