package zoren.cli;

import java.nio.BufferUnderflowException;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;

/**
 * An EXIF block: a TIFF header and folders of entries of 12 bytes, tag, type, count and value. It
 * is kept as it came, maker's notes and all, which no library can lay out anew.
 */
final class Exif {
    private static final int ORIENTATION = 0x0112;
    private static final int X_RESOLUTION = 0x011A;
    private static final int Y_RESOLUTION = 0x011B;
    private static final int RESOLUTION_UNIT = 0x0128;
    private static final int THUMBNAIL_OFFSET = 0x0201;
    private static final int THUMBNAIL_BYTES = 0x0202;
    private static final int BYTE = 1;
    private static final int SHORT = 3;
    private static final int CENTIMETRE = 3;

    private final ByteBuffer block;
    private final int first; // folder
    private final int second; // of the thumbnail, or 0

    /** Reads the outline of a block, of which it keeps a copy. */
    private Exif(byte[] bytes) {
        block = ByteBuffer.wrap(bytes.clone());
        if (block.getShort(0) == 0x4949) {
            block.order(ByteOrder.LITTLE_ENDIAN);
        }
        first = block.getInt(4);
        second = block.getInt(next(first));
    }

    /** Returns the block, or null where the bytes are none. */
    static Exif of(byte[] bytes) {
        try {
            return bytes == null ? null : new Exif(bytes);
        } catch (BufferUnderflowException | IndexOutOfBoundsException e) {
            return null;
        }
    }

    /** Returns which side is up, 1 to 8; 1 where the block does not tell. */
    int orientation() {
        final long orientation = number(first, ORIENTATION);
        return orientation >= 1 && orientation <= 8 ? (int) orientation : 1;
    }

    /** Returns the pixels a metre, or null where the block does not tell. */
    Density density() {
        final double metre = number(first, RESOLUTION_UNIT) == CENTIMETRE ? 100 : 1 / 0.0254;
        final double x = metre * ratio(X_RESOLUTION);
        final double y = metre * ratio(Y_RESOLUTION);
        return x > 0 && y > 0 ? Density.of(x, y) : null;
    }

    /** Returns the block for the picture turned upright, without the thumbnail of the sharp one. */
    byte[] upright() {
        final int orientation = entry(first, ORIENTATION);
        if (orientation >= 0) {
            final int type = block.getShort(orientation + 2);
            if (type == SHORT) {
                block.putShort(orientation + 8, (short) 1);
            } else if (type == BYTE) {
                block.put(orientation + 8, (byte) 1);
            } else {
                block.putInt(orientation + 8, 1);
            }
        }
        final long bytes = number(second, THUMBNAIL_BYTES);
        final long offset = number(second, THUMBNAIL_OFFSET);
        for (long i = Math.max(offset, 0); i < Math.min(offset + bytes, block.limit()); ++i) {
            block.put((int) i, (byte) 0);
        }
        block.putInt(next(first), 0);
        return block.array();
    }

    private int next(int folder) {
        return folder + 2 + 12 * (block.getShort(folder) & 0xFFFF);
    }

    /** Returns the offset of a folder's entry, or -1. */
    private int entry(int folder, int tag) {
        if (folder <= 0 || folder > block.limit() - 2) {
            return -1;
        }
        final int end = Math.min(next(folder), block.limit() - 11);
        for (int entry = folder + 2; entry < end; entry += 12) {
            if ((block.getShort(entry) & 0xFFFF) == tag) {
                return entry;
            }
        }
        return -1;
    }

    /** Returns an entry's number, or -1. */
    private long number(int folder, int tag) {
        final int entry = entry(folder, tag);
        if (entry < 0) {
            return -1;
        }
        final int type = block.getShort(entry + 2);
        if (type == SHORT) {
            return block.getShort(entry + 8) & 0xFFFF;
        }
        return type == BYTE ? block.get(entry + 8) : block.getInt(entry + 8) & 0xFFFFFFFFL;
    }

    /** Returns a ratio of two numbers that the entry points to, or 0. */
    private double ratio(int tag) {
        final long offset = number(first, tag);
        if (offset < 0 || offset + 8 > block.limit()) {
            return 0;
        }
        final int at = (int) offset;
        final long divisor = block.getInt(at + 4) & 0xFFFFFFFFL;
        return divisor == 0 ? 0 : (double) (block.getInt(at) & 0xFFFFFFFFL) / divisor;
    }
}
