# SPDX-License-Identifier: Apache-2.0
# The way from a compiler's error back to the template: a faulty line that is put into an operator of an example
# network is told with the box, the operator, its file and the line there, for each operator of all examples.
use strict;
use warnings;
use Cwd 'abs_path';
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use ScriptTest qw(get put run);
use Test::More;

my $batch = $ENV{TAVRIN_BATCH};
plan skip_all => 'TAVRIN_BATCH does not name tavrin-batch' if !defined $batch;
my $root = abs_path("$FindBin::Bin/../..");
my $dir = tempdir(CLEANUP => 1);
delete @ENV{grep { /^TAVRN_/ } keys %ENV};
system('cp', '-r', "$root/installation", "$dir/installation") == 0 or die;
$ENV{TAVRN_DIR} = "$dir/installation";
my $library = "$dir/installation/mray";

my %file = map { (m{/\d+\.([^/]*)\z} ? $1 : '') => $_ } glob "$library/menu/*/*";

# What the library says of a network.
sub said {
	my ($path, @words) = @_;
	my ($status, $out, $err) = run($batch, '--save-shader', @words, $path);
	return ($status, $err);
}

# Puts a line behind the one that begins a block. Gives its number and what puts all back.
sub spoil {
	my ($path, $block) = @_;
	my $text = get($path);
	return if $text !~ /^(.*?^\s*codegen\.$block\s+append[^\n]*\n)/ms;
	my $before = $1;
	put($path, $before . "    float(1.0) = 2.0;\n" . substr $text, length $before);
	return (1 + ($before =~ tr/\n//), sub { put($path, $text) });
}

for my $example (glob "$root/examples/*.tvn") {
	my ($name) = $example =~ m{([^/]+)\.tvn\z};
	my %boxes;
	my $text = get($example);
	push @{ $boxes{$1} }, $2 while $text =~ /^\s*opbox\s*\{\s*filename\s+"?([\w ]+?)"?\s+wid\s+(\d+)/mg;
	ok(%boxes, "$name has boxes");
	is((said($example))[0], 0, 'and compiles');
	for my $operator (sort keys %boxes) {
		my $path = $file{$operator};
		my ($line, $mend) = spoil($path, 'main-body') or next;
		my ($status, $err) = said($example);
		isnt($status, 0, "$name: a fault in $operator");
		my $shown = $path =~ s{^\Q$library\E/}{}r;
		for my $wid (@{ $boxes{$operator} }) {
			like($err, qr{^\Q$name\E: line \d+ \(box \Q${operator}_$wid\E, operator \Q$operator\E, \Q$shown\E line $line\): .*l-value required}m,
				"leads to ${operator}_$wid");
		}
		$mend->();
	}
}

# A file that operators include has a name and lines of its own.
{
	put("$library/include/faulty.inc", "\n# A remark.\ncodegen.main-body append\n    float(1.0) = 2.0;\n<<EOT>>\n");
	my $text = get($file{Noise});
	put($file{Noise}, "$text\n#include \"faulty.inc\"\n");
	my $one = put("$dir/one.tvn", "tavrn-version 1\ntavrn-renderer mray\nopdesk {\nopbox {\nfilename Noise\nwid 3\n}\n}\n");
	like((said($one))[1], qr{\(box Noise_3, operator Noise, include/faulty\.inc line 4\): .*l-value}, 'so has an included file');
	put($file{Noise}, $text);
}

# An argument knows its box, of several that have the operator.
{
	my $boxes = join '', map { "opbox {\nfilename Number\nwid $_\nopbutton.input number number {\nopbuttondefs {\ncurrentcast float\nwwms {\narg 1\nargname \"" . ('sin', 'fine')[$_ - 4] . "\"\n}\n}\n}\n}\n" } 4, 5;
	my $two = put("$dir/two.tvn", "tavrn-version 1\ntavrn-renderer mray\nopdesk {\n$boxes}\n");
	like((said($two))[1], qr{^two: box Number_4, button number: an argument cannot be named 'sin'}m, 'an argument tells its box');
}

# The probe's own boxes are told as well, and those of a module.
{
	my ($line, $mend) = spoil($file{Noise}, 'main-body');
	my $noise = put("$dir/noise.tvn", "tavrn-version 1\ntavrn-renderer mray\nopdesk {\nopbox {\nfilename Noise\nwid 7\n}\n}\n");
	like((said($noise, '--set', 'TAVRN_SHADER_TYPE=module'))[1], qr{^noise: line \d+ .*\(box Noise_7, operator Noise, .* line $line\): .*l-value}m,
		'so does a module');
	my ($status, undef, $err) = run($batch, '--probe', 'Noise_7.result', '--save-shader', $noise);
	like($err, qr{\(box Noise_7, operator Noise, .* line $line\): .*l-value}, 'and a probed output');
	$mend->();
}

done_testing();
