package zoren.cli;

import android.graphics.Bitmap;
import com.drew.imaging.ImageProcessingException;
import com.drew.imaging.jpeg.JpegMetadataReader;
import com.drew.imaging.png.PngChunk;
import com.drew.imaging.png.PngChunkReader;
import com.drew.imaging.png.PngChunkType;
import com.drew.lang.ByteArrayReader;
import com.drew.lang.StreamReader;
import com.drew.metadata.Metadata;
import com.drew.metadata.exif.ExifIFD0Directory;
import com.drew.metadata.exif.ExifReader;
import java.awt.color.ColorSpace;
import java.awt.image.BufferedImage;
import java.awt.image.ColorModel;
import java.awt.image.ComponentColorModel;
import java.awt.image.DataBuffer;
import java.io.BufferedInputStream;
import java.io.IOException;
import java.io.InputStream;
import java.io.OutputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Iterator;
import java.util.List;
import java.util.Locale;
import java.util.Set;
import javax.imageio.IIOImage;
import javax.imageio.ImageIO;
import javax.imageio.ImageReader;
import javax.imageio.ImageWriteParam;
import javax.imageio.ImageWriter;
import javax.imageio.stream.FileImageInputStream;
import javax.imageio.stream.ImageInputStream;
import javax.imageio.stream.ImageOutputStream;
import javax.imageio.stream.MemoryCacheImageOutputStream;

/** Moves pictures between files and bitmaps, sample by sample. */
final class Pictures {
    private static final float JPEG_QUALITY = 0.95f;
    // What the decoders warn of and decode right all the same. With any other warning samples may
    // be lost: bytes that do not fit the code or are left over, an early end, a chunk passed over.
    private static final List<String> HARMLESS_WARNINGS =
            List.of(
                    "unknown JFIF revision number",
                    "Embedded color profile is invalid", // no profile is applied
                    "in JFIF JPEG thumbnail",
                    "Invalid SOS parameters for sequential JPEG", // such a scan needs none
                    "has more entries than prior PLTE chunk",
                    "contains too many entries for bit depth",
                    "gray alpha image cannot have a PLTE chunk",
                    "RGBS images may not have a tRNS chunk"); // they have alpha itself

    private Pictures() {}

    /** Tells whether the name is one of a picture that can be written: .png, .jpg or .jpeg. */
    static boolean isPictureName(Path path) {
        return isPng(path) || isJpeg(path);
    }

    /**
     * Returns the picture as an ARGB_8888 bitmap, upright. The colour samples come as the file has
     * them, with alpha not multiplied in; 16-bit samples are brought to 8 bits.
     */
    static Bitmap read(Path path) throws Failure {
        if (!Files.exists(path)) {
            throw new Failure(path, "no such file");
        }
        if (Files.isDirectory(path)) {
            throw new Failure(path, "is a folder, not a picture");
        }
        if (!Files.isReadable(path)) {
            throw new Failure(path, "permission denied");
        }
        ImageReader reader = null;
        try (ImageInputStream in = new FileImageInputStream(path.toFile())) {
            final Iterator<ImageReader> readers = ImageIO.getImageReaders(in);
            reader = readers.hasNext() ? readers.next() : null;
            if (reader == null || !isFormat(reader, "png") && !isFormat(reader, "jpeg")) {
                throw new Failure(path, "is not a PNG or JPEG picture");
            }
            return decode(path, reader, in);
        } catch (IOException | RuntimeException e) { // decoders throw both on broken data
            throw new Failure(path, "is not a whole picture: " + e.getMessage());
        } catch (OutOfMemoryError e) {
            throw new Failure(path, "is too large for the memory there is");
        } finally {
            if (reader != null) {
                reader.dispose();
            }
        }
    }

    /** Writes the bitmap as the kind of picture that the name asks for. JPEG drops alpha. */
    static void write(Bitmap bitmap, Path path) throws Failure {
        final BufferedImage image = toImage(bitmap, !isJpeg(path));
        final String format = isJpeg(path) ? "jpeg" : "png";
        WholeFile.write(path, WholeFile.SHARED, out -> encode(image, format, out));
    }

    private static boolean isPng(Path path) {
        return lowerCaseName(path).endsWith(".png");
    }

    private static boolean isJpeg(Path path) {
        return lowerCaseName(path).endsWith(".jpg") || lowerCaseName(path).endsWith(".jpeg");
    }

    private static String lowerCaseName(Path path) {
        return String.valueOf(path.getFileName()).toLowerCase(Locale.ROOT);
    }

    private static boolean isFormat(ImageReader reader, String name) throws IOException {
        return reader.getFormatName().equalsIgnoreCase(name);
    }

    private static Bitmap decode(Path path, ImageReader reader, ImageInputStream in)
            throws IOException, Failure {
        reader.setInput(in, true, true);
        final long width = reader.getWidth(0);
        final long height = reader.getHeight(0);
        if (width * height > Integer.MAX_VALUE / 4) {
            throw new Failure(
                    path, width + " x " + height + " pixels are more than a bitmap holds");
        }
        final List<String> losses = new ArrayList<>();
        reader.addIIOReadWarningListener(
                (source, warning) -> {
                    if (HARMLESS_WARNINGS.stream().noneMatch(warning::contains)) {
                        losses.add(warning);
                    }
                });
        final BufferedImage image = reader.read(0);
        if (!losses.isEmpty()) {
            throw new Failure(path, "is not a whole picture: " + losses.get(0));
        }
        final int space = image.getColorModel().getColorSpace().getType();
        if (space != ColorSpace.TYPE_RGB && space != ColorSpace.TYPE_GRAY) {
            throw new Failure(path, "is neither RGB nor gray (CMYK, perhaps); save it as RGB");
        }
        return toBitmap(image, orientation(path, isFormat(reader, "png")));
    }

    /** Returns the EXIF orientation, 1 to 8, or 1 (upright) where the file tells none. */
    private static int orientation(Path path, boolean png) {
        try {
            final ExifIFD0Directory directory =
                    (png ? readPngExif(path) : readJpegExif(path))
                            .getFirstDirectoryOfType(ExifIFD0Directory.class);
            final Integer orientation =
                    directory == null
                            ? null
                            : directory.getInteger(ExifIFD0Directory.TAG_ORIENTATION);
            return orientation != null && orientation >= 1 && orientation <= 8 ? orientation : 1;
        } catch (IOException | ImageProcessingException e) {
            return 1;
        }
    }

    private static Metadata readJpegExif(Path path) throws IOException, ImageProcessingException {
        return JpegMetadataReader.readMetadata(path.toFile(), List.of(new ExifReader()));
    }

    /** The library reads a PNG's chunks, but does not know this one. */
    private static Metadata readPngExif(Path path) throws IOException, ImageProcessingException {
        final Metadata metadata = new Metadata();
        try (InputStream in = new BufferedInputStream(Files.newInputStream(path))) {
            final Set<PngChunkType> wanted = Set.of(new PngChunkType("eXIf"));
            for (final PngChunk chunk :
                    new PngChunkReader().extract(new StreamReader(in), wanted)) {
                new ExifReader().extract(new ByteArrayReader(chunk.getBytes()), metadata);
            }
        }
        return metadata;
    }

    /** Copies the picture row by row, each to where the EXIF orientation wants it. */
    private static Bitmap toBitmap(BufferedImage image, int orientation) {
        final int width = image.getWidth();
        final int height = image.getHeight();
        final boolean rowsBecomeColumns = orientation >= 5;
        final boolean reversed = List.of(2, 3, 7, 8).contains(orientation);
        final boolean fromFarSide = List.of(3, 4, 6, 7).contains(orientation);
        final Bitmap bitmap =
                Bitmap.createBitmap(
                        rowsBecomeColumns ? height : width,
                        rowsBecomeColumns ? width : height,
                        Bitmap.Config.ARGB_8888);
        final int[] row = new int[width];
        final int[] samples = new int[4 * width];
        for (int y = 0; y < height; ++y) {
            readRow(image, y, samples, row);
            if (reversed) {
                reverse(row);
            }
            final int line = fromFarSide ? height - 1 - y : y;
            if (rowsBecomeColumns) {
                bitmap.setPixels(row, 0, 1, line, 0, 1, width);
            } else {
                bitmap.setPixels(row, 0, width, 0, line, width, 1);
            }
        }
        return bitmap;
    }

    /**
     * Reads row {@code y} as ARGB ints. Gray and 16-bit samples are taken from the raster, because
     * {@link BufferedImage#getRGB} would convert a gray sample to another one by way of gamma.
     */
    private static void readRow(BufferedImage image, int y, int[] samples, int[] row) {
        final ColorModel model = image.getColorModel();
        final boolean gray = model.getColorSpace().getType() == ColorSpace.TYPE_GRAY;
        final int type = model.getTransferType();
        if (!(model instanceof ComponentColorModel)
                || model.isAlphaPremultiplied()
                || !(type == DataBuffer.TYPE_BYTE || type == DataBuffer.TYPE_USHORT)) {
            image.getRGB(0, y, row.length, 1, row, 0, row.length);
            return;
        }
        final int bands = image.getRaster().getNumBands();
        image.getRaster().getPixels(0, y, row.length, 1, samples);
        for (int x = 0, i = 0; x < row.length; ++x, i += bands) {
            final int red = toByte(samples[i], type);
            final int green = gray ? red : toByte(samples[i + 1], type);
            final int blue = gray ? red : toByte(samples[i + 2], type);
            final int alpha = model.hasAlpha() ? toByte(samples[i + bands - 1], type) : 255;
            row[x] = alpha << 24 | red << 16 | green << 8 | blue;
        }
    }

    private static int toByte(int sample, int type) {
        return type == DataBuffer.TYPE_BYTE ? sample : (sample * 255 + 32767) / 65535;
    }

    private static void reverse(int[] row) {
        for (int i = 0, j = row.length - 1; i < j; ++i, --j) {
            final int color = row[i];
            row[i] = row[j];
            row[j] = color;
        }
    }

    /** Copies the bitmap, with an alpha channel if that is allowed and some pixel is not opaque. */
    private static BufferedImage toImage(Bitmap bitmap, boolean alphaAllowed) {
        final int width = bitmap.getWidth();
        final int height = bitmap.getHeight();
        final int[] row = new int[width];
        boolean opaque = true;
        for (int y = 0; y < height && alphaAllowed && opaque; ++y) {
            bitmap.getPixels(row, 0, width, 0, y, width, 1);
            for (final int color : row) {
                opaque &= color >>> 24 == 255;
            }
        }
        final BufferedImage image =
                new BufferedImage(
                        width,
                        height,
                        alphaAllowed && !opaque
                                ? BufferedImage.TYPE_INT_ARGB
                                : BufferedImage.TYPE_INT_RGB);
        for (int y = 0; y < height; ++y) {
            bitmap.getPixels(row, 0, width, 0, y, width, 1);
            image.getRaster().setDataElements(0, y, width, 1, row);
        }
        return image;
    }

    private static void encode(BufferedImage image, String format, OutputStream out)
            throws IOException {
        final ImageWriter writer = ImageIO.getImageWritersByFormatName(format).next();
        try (ImageOutputStream imageOut = new MemoryCacheImageOutputStream(out)) {
            final ImageWriteParam param = writer.getDefaultWriteParam();
            if (format.equals("jpeg")) {
                param.setCompressionMode(ImageWriteParam.MODE_EXPLICIT);
                param.setCompressionQuality(JPEG_QUALITY);
            }
            writer.setOutput(imageOut);
            writer.write(null, new IIOImage(image, null, null), param);
        } finally {
            writer.dispose();
        }
    }
}
