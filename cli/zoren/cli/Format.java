package zoren.cli;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.file.Path;
import java.util.Iterator;
import java.util.Locale;
import java.util.Set;
import javax.imageio.ImageIO;
import javax.imageio.ImageReader;

/** The kinds of pictures that are read. A file's first bytes tell them apart, not its name. */
enum Format {
    PNG(Way.BY_ROWS),
    JPEG(Way.BY_ROWS),
    WEBP(Way.WHOLE),
    GIF(Way.WHOLE),
    BMP(Way.BY_STRIPS),
    TIFF(Way.BY_STRIPS);

    /** How a decoder gives samples without all of them in memory. */
    enum Way {
        /** It stores row after row in the raster that it is given. */
        BY_ROWS,
        /** It begins at any row. */
        BY_STRIPS,
        /** It does not. */
        WHOLE
    }

    /** The first bytes that are needed to know a file by. */
    static final int HEAD_BYTES = 18;

    private static final Set<Integer> BMP_HEADER_BYTES = Set.of(12, 16, 40, 52, 56, 64, 108, 124);

    final Way way;

    Format(Way way) {
        this.way = way;
    }

    /** Returns the kind of the file that begins with {@code head}, or null for no picture. */
    static Format of(byte[] head) {
        if (head.length < HEAD_BYTES) {
            return null;
        }
        final ByteBuffer bytes = ByteBuffer.wrap(head);
        final int first = bytes.getInt(0);
        if (bytes.getLong(0) == 0x89504E470D0A1A0AL) {
            return PNG;
        } else if (first >>> 8 == 0xFFD8FF) {
            return JPEG;
        } else if (first == 0x52494646 && bytes.getInt(8) == 0x57454250) { // RIFF, WEBP
            return WEBP;
        } else if (first == 0x47494638) { // GIF8
            return GIF;
        } else if (first == 0x49492A00 || first == 0x4D4D002A) { // of either byte order
            return TIFF;
        }
        final int header = bytes.order(ByteOrder.LITTLE_ENDIAN).getInt(14);
        return first >>> 16 == 0x424D && BMP_HEADER_BYTES.contains(header) ? BMP : null;
    }

    /** Returns the kind that a name asks for, PNG or JPEG, or null where it ends in neither. */
    static Format ofName(Path path) {
        final String name = String.valueOf(path.getFileName()).toLowerCase(Locale.ROOT);
        if (name.endsWith(".png")) {
            return PNG;
        }
        return name.endsWith(".jpg") || name.endsWith(".jpeg") ? JPEG : null;
    }

    /** Returns the name with the ending of this kind in place of the one it has. */
    Path rename(Path path) {
        final Path name = path.getFileName();
        if (ofName(path) == this) {
            return path;
        }
        final String word = Names.word(name);
        final int dot = word.lastIndexOf('.');
        final String ending = this == PNG ? ".png" : ".jpg";
        return path.resolveSibling(Names.path((dot > 0 ? word.substring(0, dot) : word) + ending));
    }

    /** Returns a new reader: the platform's own, or where it has none or not wanted, a plug-in. */
    ImageReader reader(boolean plugIn) {
        final Iterator<ImageReader> readers = ImageIO.getImageReadersByFormatName(name());
        while (readers.hasNext()) {
            final ImageReader reader = readers.next();
            final boolean own = reader.getClass().getModule() == ImageIO.class.getModule();
            if (own != plugIn) {
                return reader;
            }
        }
        throw new IllegalStateException("no reader of " + this); // the class path has them
    }
}
