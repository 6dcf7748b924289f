package zoren.cli;

import android.graphics.Bitmap;
import java.io.IOException;
import java.io.PrintWriter;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import picocli.CommandLine.Command;
import picocli.CommandLine.ITypeConverter;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.Parameters;
import picocli.CommandLine.Spec;
import picocli.CommandLine.TypeConversionException;
import zoren.util.BlurUtil;

@Command(
        name = "blur",
        header = "Blur pictures and lay a colour over them.",
        description = {
            "",
            "INPUT and OUTPUT are two pictures or two folders. All PNG and JPEG files of a folder"
                    + " are blurred, under their own names, into the folder OUTPUT, which is made"
                    + " when missing.",
            "",
            "The result is opaque. A picture narrower or lower than 2 pixels stays as it is.",
            ""
        },
        footer = {
            "",
            "Examples:",
            "  zoren blur photo.jpg soft.png --radius 7.3",
            "  zoren blur photo.jpg warm.jpg --radius 25 --color 40FF8800",
            "  zoren blur holiday/ holiday-soft/ --radius 10"
        })
final class BlurCommand implements Callable<Integer> {
    private static final float RADIUS_LIMIT = 23170.75f; // from here on the library refuses
    private static final float LEAST_RADIUS = 0.25f; // below, the library does not blur
    private static final int LEAST_SIDE = 2;

    @Spec private CommandSpec spec;

    @Parameters(index = "0", paramLabel = "INPUT", description = "A PNG or JPEG file, or a folder.")
    private Path input;

    @Parameters(
            index = "1",
            paramLabel = "OUTPUT",
            description = "The file to write, .png, .jpg or .jpeg, or a folder.")
    private Path output;

    @Option(
            names = "--radius",
            required = true,
            paramLabel = "R",
            description =
                    "The Gaussian's standard deviation in pixels, from 0 to below 23170.75. Below"
                            + " 0.25 nothing is blurred; the colour is laid over all the same.")
    private float radius;

    @Option(
            names = "--color",
            paramLabel = "AARRGGBB",
            converter = ColorConverter.class,
            description =
                    "The colour to lay over the blurred picture: alpha, red, green, blue, two"
                            + " hexadecimal digits each. Alpha 00, the default, lays none; FF"
                            + " covers the picture.")
    private int color;

    @Override
    public Integer call() throws Failure {
        if (!(radius >= 0 && radius < RADIUS_LIMIT)) {
            throw usage("--radius must be at least 0 and below " + RADIUS_LIMIT);
        }
        if (Files.isDirectory(input)) {
            return blurFolder();
        }
        if (Files.isDirectory(output)) {
            throw new Failure(output, "is a folder, but " + input + " is not");
        }
        if (!Pictures.isPictureName(output)) {
            throw usage("OUTPUT must end in .png, .jpg or .jpeg: " + output);
        }
        blur(input, output);
        return 0;
    }

    private int blurFolder() throws Failure {
        final List<Path> pictures = listPictures();
        if (Files.exists(output) && !Files.isDirectory(output)) {
            throw new Failure(output, "is a file, but " + input + " is a folder");
        }
        WholeFile.makeFolder(output);
        try {
            if (Files.isSameFile(input, output)) {
                throw new Failure(output, "is the folder that is read; name another one");
            }
        } catch (IOException e) {
            throw new Failure("cannot use " + new Failure(output, e).getMessage());
        }

        final PrintWriter err = spec.commandLine().getErr();
        final ProgressBar progress = new ProgressBar(err, pictures.size());
        int exitCode = 0;
        for (final Path picture : pictures) {
            progress.show();
            try {
                blur(picture, output.resolve(picture.getFileName()));
            } catch (Failure e) {
                progress.clear();
                Zoren.report(err, e.getMessage());
                exitCode = 1;
            }
            progress.advance();
        }
        progress.clear();
        return exitCode;
    }

    private List<Path> listPictures() throws Failure {
        try (Stream<Path> files = Files.list(input)) {
            final List<Path> pictures =
                    files.filter(Files::isRegularFile)
                            .filter(Pictures::isPictureName)
                            .sorted()
                            .collect(Collectors.toList());
            if (pictures.isEmpty()) {
                throw new Failure(input, "holds no PNG or JPEG file");
            }
            return pictures;
        } catch (IOException e) {
            throw new Failure("cannot list " + new Failure(input, e).getMessage());
        } catch (UncheckedIOException e) { // from the stream, after some files
            throw new Failure("cannot list " + new Failure(input, e.getCause()).getMessage());
        }
    }

    private void blur(Path from, Path to) throws Failure {
        final Bitmap bitmap = Pictures.read(from);
        final int width = bitmap.getWidth();
        final int height = bitmap.getHeight();
        // A refused request is silent. But a blur makes every pixel opaque without looking at its
        // alpha, so a pixel made transparent before, and transparent still, tells of a refusal.
        final boolean blurs = radius >= LEAST_RADIUS && width >= LEAST_SIDE && height >= LEAST_SIDE;
        if (blurs) {
            bitmap.setPixel(0, 0, bitmap.getPixel(0, 0) & 0xFFFFFF);
        }
        try {
            BlurUtil.getBlurEffect(bitmap, radius, color);
            if (blurs && bitmap.getPixel(0, 0) >>> 24 == 0) {
                throw new Failure(from, "there is not the memory to blur by radius " + radius);
            }
            Pictures.write(bitmap, to);
        } catch (OutOfMemoryError e) {
            throw new Failure(from, "is too large for the memory there is");
        } finally {
            bitmap.recycle();
        }
    }

    private ParameterException usage(String message) {
        return new ParameterException(spec.commandLine(), message);
    }

    private static final class ColorConverter implements ITypeConverter<Integer> {
        @Override
        public Integer convert(String text) {
            if (!text.matches("#?[0-9A-Fa-f]{8}")) {
                throw new TypeConversionException(
                        "'" + text + "' is not AARRGGBB, eight hexadecimal digits, alpha first");
            }
            return Integer.parseUnsignedInt(text.replace("#", ""), 16);
        }
    }
}
