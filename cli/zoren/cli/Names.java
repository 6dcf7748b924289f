package zoren.cli;

import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.net.URI;
import java.nio.ByteBuffer;
import java.nio.CharBuffer;
import java.nio.charset.CharsetDecoder;
import java.nio.charset.CoderResult;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.regex.Pattern;
import picocli.CommandLine.TypeConversionException;

/**
 * Names of files as words and as text. A name is any bytes, mostly UTF-8. In a word, a byte that is
 * no part of UTF-8 is a lone surrogate, U+DC00 plus the byte, so that no two names are one word.
 */
final class Names {
    private static final int ESCAPE = 0xDC00;
    private static final String LOSS = "\uFFFD"; // what the virtual machine makes of such a byte
    // What would steer a terminal: control characters, line ends, changes of the writing direction.
    private static final Pattern UNSHOWABLE =
            Pattern.compile("[\\p{Cc}\\u2028-\\u202E\\u2066-\\u2069\\uDC80-\\uDCFF]");

    private Names() {}

    /** Returns the process's last words, which came to Java with losses, as their bytes say. */
    static String[] words(String[] given) {
        if (!String.join("", given).contains(LOSS)) {
            return given;
        }
        final List<String> words = new ArrayList<>();
        try {
            final ByteArrayOutputStream word = new ByteArrayOutputStream();
            for (final byte each : Files.readAllBytes(Path.of("/proc/self/cmdline"))) {
                if (each == 0) { // behind every word
                    words.add(decode(word.toByteArray()));
                    word.reset();
                } else {
                    word.write(each);
                }
            }
        } catch (IOException e) {
            return given;
        }
        final int others = words.size() - given.length; // Java and its options
        return others < 0 ? given : words.subList(others, words.size()).toArray(new String[0]);
    }

    /** Returns the path that a word names. */
    static Path path(String word) {
        if (word.isEmpty()) { // from a script's unset variable; not meant for the current folder
            throw new TypeConversionException("a path cannot be empty");
        }
        if (word.chars().noneMatch(Names::isEscape)) {
            return Path.of(word);
        }
        final StringBuilder uri = new StringBuilder("file:///"); // takes bytes, as no string does
        for (final byte each : encode(word)) {
            uri.append(each == '/' ? "/" : String.format("%%%02X", each));
        }
        final Path whole = Path.of(URI.create(uri.toString()));
        return word.startsWith("/") ? whole : whole.subpath(0, whole.getNameCount());
    }

    /** Returns the path as a line can show it. */
    static String shown(Path path) {
        return shown(word(path));
    }

    /** Returns the text as a line can show it: what is unshowable is spelled as in C. */
    static String shown(String text) {
        return UNSHOWABLE.matcher(text).replaceAll(match -> "\\\\" + spelling(match.group()));
    }

    private static String spelling(String unshowable) {
        switch (unshowable) {
            case "\n":
                return "n";
            case "\r":
                return "r";
            case "\t":
                return "t";
            default:
                final int character = unshowable.charAt(0);
                final boolean isByte = character < 0x80 || isEscape(character);
                return String.format(isByte ? "x%02x" : "u%04x", character & (isByte ? 0xFF : -1));
        }
    }

    /** Returns the word that names the path. */
    static String word(Path path) {
        if (!path.toString().contains(LOSS)) {
            return path.toString();
        } // else by way of its URI, which has no losses
        final String uri = Path.of("/").resolve(path).toUri().getRawPath();
        final ByteArrayOutputStream bytes = new ByteArrayOutputStream();
        for (int i = path.isAbsolute() ? 0 : 1; i < uri.length(); ++i) {
            if (uri.charAt(i) == '%') {
                bytes.write(Integer.parseInt(uri, i + 1, i + 3, 16));
                i += 2;
            } else {
                bytes.write(uri.charAt(i));
            }
        }
        return decode(bytes.toByteArray()).replaceFirst("(?<=.)/$", ""); // a folder's
    }

    private static String decode(byte[] bytes) {
        final CharsetDecoder decoder = StandardCharsets.UTF_8.newDecoder();
        final ByteBuffer in = ByteBuffer.wrap(bytes);
        final CharBuffer out = CharBuffer.allocate(bytes.length);
        while (true) {
            final CoderResult result = decoder.decode(in, out, true);
            if (!result.isMalformed()) {
                return out.flip().toString();
            }
            for (int i = 0; i < result.length(); ++i) {
                out.put((char) (ESCAPE + (in.get() & 0xFF)));
            }
        }
    }

    private static byte[] encode(String word) {
        final ByteArrayOutputStream bytes = new ByteArrayOutputStream();
        word.codePoints()
                .forEach(
                        point -> {
                            if (isEscape(point)) {
                                bytes.write(point - ESCAPE);
                            } else {
                                bytes.writeBytes(
                                        Character.toString(point).getBytes(StandardCharsets.UTF_8));
                            }
                        });
        return bytes.toByteArray();
    }

    private static boolean isEscape(int character) {
        return character >= ESCAPE + 0x80 && character <= ESCAPE + 0xFF;
    }
}
